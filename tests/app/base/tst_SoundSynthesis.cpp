#include "app/base/SoundSynthesis.h"

#include "support/TestMain.h"

#include <QtEndian>

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

constexpr int headerSize = 44;
constexpr int sampleRate = 44100;

QList<int> samplesOf(const QByteArray& image)
{
    QList<int> samples;
    for (qsizetype at = headerSize; at + 1 < image.size(); at += 2)
        samples.append(qFromLittleEndian<qint16>(image.constData() + at));
    return samples;
}

/// How often the sound passes zero upwards from `from` to `to`, in seconds.
int waves(const QList<int>& samples, double from, double to)
{
    int count = 0;
    for (auto i = static_cast<qsizetype>(from * sampleRate) + 1; i < static_cast<qsizetype>(to * sampleRate);
         ++i)
        count += samples[i - 1] < 0 && samples[i] >= 0 ? 1 : 0;
    return count;
}

int loudest(const QList<int>& samples, double from, double to)
{
    int most = 0;
    for (auto i = static_cast<qsizetype>(from * sampleRate); i < static_cast<qsizetype>(to * sampleRate); ++i)
        most = std::max(most, std::abs(samples[i]));
    return most;
}

} // namespace

class TestSoundSynthesis final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_image_says_what_it_holds()
    {
        const QByteArray image = synthesize({}, 0.5);
        QCOMPARE(image.size(), headerSize + sampleRate);
        QCOMPARE(image.first(4), "RIFF"_ba);
        QCOMPARE(qFromLittleEndian<quint32>(image.constData() + 4), quint32(image.size() - 8));
        QCOMPARE(image.sliced(8, 8), "WAVEfmt "_ba);
        QCOMPARE(qFromLittleEndian<quint16>(image.constData() + 20), quint16(1)); // plain samples
        QCOMPARE(qFromLittleEndian<quint16>(image.constData() + 22), quint16(1)); // one channel
        QCOMPARE(qFromLittleEndian<quint32>(image.constData() + 24), quint32(sampleRate));
        QCOMPARE(qFromLittleEndian<quint32>(image.constData() + 28), quint32(2 * sampleRate));
        QCOMPARE(qFromLittleEndian<quint16>(image.constData() + 32), quint16(2));
        QCOMPARE(qFromLittleEndian<quint16>(image.constData() + 34), quint16(16));
        QCOMPARE(image.sliced(36, 4), "data"_ba);
        QCOMPARE(qFromLittleEndian<quint32>(image.constData() + 40), quint32(sampleRate));
        QCOMPARE(synthesize({}, -1.0).size(), headerSize);
    }

    void a_tone_sounds_at_its_pitch_from_its_start_to_its_end()
    {
        const QList<int> samples = samplesOf(synthesize({{400.0, 0.1, 0.2}}, 0.5));
        QCOMPARE(loudest(samples, 0.0, 0.1), 0);
        QCOMPARE_GE(waves(samples, 0.1, 0.3), 79);
        QCOMPARE_LE(waves(samples, 0.1, 0.3), 81);
        QCOMPARE(loudest(samples, 0.3, 0.5), 0);
    }

    void a_tone_begins_softly_and_decays()
    {
        const QList<int> samples = samplesOf(synthesize({{400.0, 0.0, 0.4}}, 0.4));
        QCOMPARE_LT(loudest(samples, 0.0, 0.002), loudest(samples, 0.01, 0.02) / 2);
        QCOMPARE_GT(loudest(samples, 0.01, 0.02), 9000);
        QCOMPARE_LT(loudest(samples, 0.3, 0.4), loudest(samples, 0.01, 0.02) / 8);
    }

    void a_tone_is_cut_where_the_sound_ends()
    {
        QCOMPARE(samplesOf(synthesize({{400.0, 0.1, 9.0}, {400.0, 7.0, 1.0}}, 0.2)).size(), sampleRate / 5);
    }

    void tones_together_stay_within_a_sample()
    {
        const QList<int> samples = samplesOf(synthesize(QList<Tone>(9, {400.0, 0.0, 0.4}), 0.4));
        QCOMPARE(*std::max_element(samples.begin(), samples.end()), 32767);
        QCOMPARE(*std::min_element(samples.begin(), samples.end()), -32767);
    }
};

TAVORAN_TEST(TestSoundSynthesis)
#include "tst_SoundSynthesis.moc"
