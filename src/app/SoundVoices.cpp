#include "app/SoundVoices.h"

#include <QFileInfo>
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
    if (!m_output.available())
        return;
    auto voice = m_voices.find(kind);
    if (voice == m_voices.end()) {
        const QString path = soundFilePath(kind);
        if (path.isEmpty())
            return;
        voice = m_voices.emplace(kind, m_output.load(path)).first;
    }
    voice->second();
}
