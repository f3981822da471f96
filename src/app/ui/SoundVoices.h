#pragma once

#include "app/ui/SoundPlayer.h"

#include <QObject>

#include <functional>
#include <map>

/// Keeps a voice for each kind of sound and starts it from the event loop. The output that makes voices is
/// handed in, so that tests need no audio device.
class SoundVoices final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SoundVoices)

public:
    struct Output {
        /// Whether there is a device to play on; asked before each sound.
        std::function<bool()> available;
        /// Loads a file once; the result starts it from its beginning.
        std::function<std::function<void()>(const QString& filePath)> load;
    };

    explicit SoundVoices(Output output, QObject* parent = nullptr);
    ~SoundVoices() override = default;

    /// Returns at once; everything happens in a later turn of the event loop. The first call for a kind
    /// writes its file, whether or not there is a device to play it on.
    void play(SoundKind kind);

private:
    void playNow(SoundKind kind);

    Output m_output;
    std::map<SoundKind, std::function<void()>> m_voices;
};
