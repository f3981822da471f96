#include "app/base/SoundSynthesis.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

constexpr int sampleRate = 44100;
constexpr double attackSeconds = 0.012;
constexpr double loudness = 0.35;

template <typename Integer> void append(QByteArray& image, Integer value)
{
    const Integer little = qToLittleEndian(value);
    image.append(reinterpret_cast<const char*>(&little), sizeof little);
}

void addTone(std::vector<double>& samples, const Tone& tone)
{
    const auto first = static_cast<std::size_t>(std::max(0.0, tone.start * sampleRate));
    const auto count = static_cast<std::size_t>(std::max(0.0, tone.length * sampleRate));
    for (std::size_t i = 0; i < count && first + i < samples.size(); ++i) {
        const double t = static_cast<double>(i) / sampleRate;
        const double envelope = std::exp(-4.0 * t / tone.length);
        const double attack = std::min(1.0, t / attackSeconds);
        samples[first + i]
            += envelope * attack * loudness * std::sin(2.0 * std::numbers::pi * tone.frequency * t);
    }
}

QByteArray waveHeader(quint32 dataSize)
{
    constexpr quint16 bytesPerSample = 2;
    QByteArray header("RIFF");
    append(header, quint32(dataSize + 36));
    header += "WAVEfmt ";
    append(header, quint32(16)); // size of the format chunk
    append(header, quint16(1));  // PCM
    append(header, quint16(1));  // mono
    append(header, quint32(sampleRate));
    append(header, quint32(sampleRate * bytesPerSample));
    append(header, bytesPerSample);
    append(header, quint16(8 * bytesPerSample));
    header += "data";
    append(header, dataSize);
    return header;
}

} // namespace

QByteArray synthesize(const QList<Tone>& tones, double seconds)
{
    std::vector<double> samples(static_cast<std::size_t>(std::max(0.0, seconds * sampleRate)), 0.0);
    for (const Tone& tone : tones)
        addTone(samples, tone);
    QByteArray image = waveHeader(static_cast<quint32>(samples.size() * sizeof(qint16)));
    image.reserve(image.size() + static_cast<qsizetype>(samples.size() * sizeof(qint16)));
    for (const double sample : samples)
        append(image, static_cast<qint16>(std::clamp(sample, -1.0, 1.0) * 32767.0));
    return image;
}
