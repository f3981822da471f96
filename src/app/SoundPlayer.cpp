#include "app/SoundPlayer.h"

#include "app/PrivateFile.h"
#include "app/SoundVoices.h"

#include <QAudioDevice>
#include <QHash>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QStandardPaths>
#include <QUrl>

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

void writeSound(const QString& path, const Sound& sound)
{
    QFile file;
    if (openPrivateFile(file, path, QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(synthesize(sound.tones, sound.seconds));
}

SoundVoices& voices()
{
    // Never destroyed: an effect torn down after the application object would crash at exit.
    static SoundVoices& instance = *new SoundVoices({
        .available = [] { return !QMediaDevices::defaultAudioOutput().isNull(); },
        .load = [](const QString& path) -> std::function<void()> {
            auto* effect = new QSoundEffect;
            effect->setSource(QUrl::fromLocalFile(path));
            effect->setVolume(volume);
            return [effect] { effect->play(); };
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
    static QHash<int, QString> paths;
    const auto known = paths.constFind(static_cast<int>(kind));
    if (known != paths.constEnd())
        return *known;
    const Sound sound = soundOf(kind);
    if (sound.fileName.isEmpty())
        return {};
    const QString path
        = QStandardPaths::writableLocation(QStandardPaths::TempLocation) + u'/' + sound.fileName;
    writeSound(path, sound);
    paths.insert(static_cast<int>(kind), path);
    return path;
}
