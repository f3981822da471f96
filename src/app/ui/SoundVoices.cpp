#include "app/ui/SoundVoices.h"

#include <QTimer>

SoundVoices::SoundVoices(Output output, QObject* parent)
    : QObject(parent)
    , m_output(std::move(output))
{
}

void SoundVoices::play(SoundKind kind)
{
    QTimer::singleShot(0, this, [this, kind] { playNow(kind); });
}

void SoundVoices::playNow(SoundKind kind)
{
    const bool fileReady = soundFileReady(kind);
    if (!m_output.available())
        return;
    auto voice = m_voices.find(kind);
    if (voice == m_voices.end()) {
        if (!fileReady)
            return;
        voice = m_voices.emplace(kind, m_output.load(soundFilePath(kind))).first;
    }
    voice->second();
}
