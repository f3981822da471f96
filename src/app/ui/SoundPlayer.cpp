#include "app/ui/SoundPlayer.h"
#include "app/base/SoundSynthesis.h"

#include "app/base/PrivateFile.h"
#include "app/ui/SoundVoices.h"

#include <QAudioDevice>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QStandardPaths>
#include <QUrl>

#include <map>

using namespace Qt::StringLiterals;

namespace {

constexpr float volume = 0.7F;

struct Sound {
    QString fileName;
    double seconds = 0.0;
    QList<Tone> tones;
};

Sound soundOf(SoundKind kind)
{
    switch (kind) {
    case SoundKind::Open:
        return {u"tavoran-open.wav"_s, 0.28, {{660.0, 0.0, 0.09}, {880.0, 0.09, 0.14}}};
    case SoundKind::Close:
        return {u"tavoran-close.wav"_s, 0.30, {{880.0, 0.0, 0.09}, {587.0, 0.09, 0.16}}};
    case SoundKind::Fill:
        return {u"tavoran-fill.wav"_s, 0.22, {{1046.0, 0.0, 0.16}}};
    case SoundKind::Error:
        return {u"tavoran-error.wav"_s, 0.28, {{160.0, 0.0, 0.22}, {150.0, 0.0, 0.22}}};
    }
    return {};
}

struct SoundFile {
    QString path;
    bool written = false;
};

bool writeSound(const QString& path, const Sound& sound)
{
    const QByteArray image = synthesize(sound.tones, sound.seconds);
    QFile file;
    return openPrivateFile(file, path, QIODevice::WriteOnly | QIODevice::Truncate)
        && file.write(image) == image.size() && file.flush();
}

/// Written on first use and never checked again.
const SoundFile& soundFile(SoundKind kind)
{
    static std::map<SoundKind, SoundFile> files;
    const auto known = files.find(kind);
    if (known != files.end())
        return known->second;
    SoundFile& file = files[kind];
    const Sound sound = soundOf(kind);
    if (sound.fileName.isEmpty())
        return file;
    file.path = QStandardPaths::writableLocation(QStandardPaths::TempLocation) + u'/' + sound.fileName;
    file.written = writeSound(file.path, sound);
    return file;
}

SoundVoices& voices()
{
    // Never destroyed: an effect torn down after the application object would crash at exit.
    static SoundVoices& instance = *new SoundVoices({
        .available = [] { return !QMediaDevices::defaultAudioOutput().isNull(); },
        .load = [](const QString& path) -> std::function<void()> {
            return [effect = std::shared_ptr(newSoundEffect(path))] { effect->play(); };
        },
    });
    return instance;
}

} // namespace

void play(SoundKind kind)
{
    voices().play(kind);
}

QString soundFilePath(SoundKind kind)
{
    return soundFile(kind).path;
}

bool soundFileReady(SoundKind kind)
{
    return soundFile(kind).written;
}

std::unique_ptr<QSoundEffect> newSoundEffect(const QString& filePath)
{
    auto effect = std::make_unique<QSoundEffect>();
    effect->setSource(QUrl::fromLocalFile(filePath));
    effect->setVolume(volume);
    return effect;
}
