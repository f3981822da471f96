#include "app/base/SoundSynthesis.h"
#include "app/ui/SoundPlayer.h"
#include "support/TestMain.h"

#include <QSoundEffect>
#include <QtEndian>

#include <numbers>

using namespace Qt::StringLiterals;

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

quint32 field32(const QByteArray& image, qsizetype at)
{
    return qFromLittleEndian<quint32>(image.constData() + at);
}

quint16 field16(const QByteArray& image, qsizetype at)
{
    return qFromLittleEndian<quint16>(image.constData() + at);
}

qint16 sample(const QByteArray& image, qsizetype index)
{
    return qFromLittleEndian<qint16>(image.constData() + 44 + 2 * index);
}

} // namespace

class TestSoundPlayer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachSoundIsAFileOfItsOwn_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("samples");
        QTest::addColumn<QList<double>>("tones");
        QTest::addColumn<double>("seconds");
        QTest::newRow("open") << 0 << u"tavoran-open.wav"_s << 12348
                              << QList<double>{660, 0, 0.09, 880, 0.09, 0.14} << 0.28;
        QTest::newRow("close") << 1 << u"tavoran-close.wav"_s << 13230
                               << QList<double>{880, 0, 0.09, 587, 0.09, 0.16} << 0.30;
        QTest::newRow("fill") << 2 << u"tavoran-fill.wav"_s << 9702 << QList<double>{1046, 0, 0.16} << 0.22;
        QTest::newRow("error") << 3 << u"tavoran-error.wav"_s << 12348
                               << QList<double>{160, 0, 0.22, 150, 0, 0.22} << 0.28;
    }
    void eachSoundIsAFileOfItsOwn()
    {
        QFETCH(int, kind);
        QFETCH(QString, name);
        QFETCH(int, samples);
        QFETCH(QList<double>, tones);
        QFETCH(double, seconds);
        const QString path = soundFilePath(static_cast<SoundKind>(kind));
        QCOMPARE(path, QDir::tempPath() + u'/' + name);
        QVERIFY(soundFileReady(static_cast<SoundKind>(kind)));
        const QByteArray image = contentOf(path);
        QCOMPARE(image.size(), 44 + 2 * samples);
        QList<Tone> list;
        for (qsizetype i = 0; i < tones.size(); i += 3)
            list.append({tones[i], tones[i + 1], tones[i + 2]});
        QCOMPARE(image, synthesize(list, seconds));
        const QFile::Permissions others
            = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        QVERIFY(!(QFile::permissions(path) & others));
    }

    void theHeaderReadsBackAsMonoPcm()
    {
        const QByteArray image = synthesize({{660, 0.0, 0.09}, {880, 0.09, 0.14}}, 0.28);
        QCOMPARE(image.size(), 44 + 2 * 12348);
        QCOMPARE(image.first(4), "RIFF");
        QCOMPARE(field32(image, 4), quint32(36 + 2 * 12348));
        QCOMPARE(image.sliced(8, 8), "WAVEfmt ");
        QCOMPARE(field32(image, 16), 16U);
        QCOMPARE(field16(image, 20), quint16(1));
        QCOMPARE(field16(image, 22), quint16(1));
        QCOMPARE(field32(image, 24), 44100U);
        QCOMPARE(field32(image, 28), 88200U);
        QCOMPARE(field16(image, 32), quint16(2));
        QCOMPARE(field16(image, 34), quint16(16));
        QCOMPARE(image.sliced(36, 4), "data");
        QCOMPARE(field32(image, 40), quint32(2 * 12348));
    }

    void samplesFollowTheFormula()
    {
        const double length = 0.16;
        const QByteArray image = synthesize({{1046, 0.0, length}}, 0.22);
        for (const int i : {0, 1, 100, 529, 530, 3000, 7055}) {
            const double t = i / 44100.0;
            const double value = std::exp(-4.0 * t / length) * std::min(1.0, t / 0.012) * 0.35
                * std::sin(2.0 * std::numbers::pi * 1046 * t);
            QCOMPARE(sample(image, i), static_cast<qint16>(value * 32767.0));
        }
        // After the tone: silence to the end.
        QCOMPARE(sample(image, 7056), qint16(0));
        QCOMPARE(sample(image, 9701), qint16(0));
    }

    void everyToneStartsFromSilence()
    {
        const QByteArray second = synthesize({{880, 0.09, 0.14}}, 0.28);
        for (int i = 0; i <= 3969; ++i) // 0.09 s
            QCOMPARE(sample(second, i), qint16(0));
        QVERIFY(sample(second, 3975) != 0);
    }

    void overlappingTonesAddUpAndStayBelowTheClamp()
    {
        const QByteArray both = synthesize({{160, 0.0, 0.22}, {150, 0.0, 0.22}}, 0.28);
        const QByteArray first = synthesize({{160, 0.0, 0.22}}, 0.28);
        const QByteArray second = synthesize({{150, 0.0, 0.22}}, 0.28);
        int peak = 0;
        for (int i = 0; i < 12348; ++i) {
            QVERIFY(std::abs(sample(both, i) - sample(first, i) - sample(second, i)) <= 1);
            peak = std::max(peak, std::abs(int(sample(both, i))));
        }
        QVERIFY(peak > 10000);
        QVERIFY(peak < 2 * 0.35 * 32767);
    }

    void aSumAboveFullScaleIsClamped()
    {
        const QList<Tone> many(10, Tone{200, 0.0, 0.2});
        const QByteArray image = synthesize(many, 0.2);
        int highest = 0;
        int lowest = 0;
        for (int i = 0; i < 8820; ++i) {
            highest = std::max<int>(highest, sample(image, i));
            lowest = std::min<int>(lowest, sample(image, i));
        }
        QCOMPARE(highest, 32767);
        QCOMPARE(lowest, -32767);
    }

    void aToneThatOutlastsTheSoundIsCutOff()
    {
        QCOMPARE(synthesize({{440, 0.05, 1.0}}, 0.1).size(), 44 + 2 * 4410);
        QCOMPARE(synthesize({{440, 5.0, 1.0}}, 0.1), synthesize({}, 0.1));
    }

    void aKindThatDoesNotExistHasNoFile()
    {
        QCOMPARE(soundFilePath(static_cast<SoundKind>(7)), QString());
        QVERIFY(!soundFileReady(static_cast<SoundKind>(-1)));
        QCOMPARE(synthesize({}, 0.0).size(), 44);
        play(static_cast<SoundKind>(7));
        QCoreApplication::processEvents();
    }

    void theFileIsWrittenOnceARun()
    {
        const QString path = soundFilePath(SoundKind::Fill);
        QVERIFY(QFile::remove(path));
        QCOMPARE(soundFilePath(SoundKind::Fill), path);
        QVERIFY(!QFile::exists(path));
    }

    void anEffectPlaysItsFileAtSeventyPercent()
    {
        const QString path = soundFilePath(SoundKind::Close);
        const std::unique_ptr<QSoundEffect> effect = newSoundEffect(path);
        QCOMPARE(effect->source(), QUrl::fromLocalFile(path));
        QCOMPARE(effect->volume(), 0.7F);
        QCOMPARE(effect->loopCount(), 1);
    }

    void playingWithoutAnAudioDeviceIsSilent()
    {
        play(SoundKind::Open);
        play(SoundKind::Open);
        QCoreApplication::processEvents();
    }
};

TAVORAN_TEST(TestSoundPlayer)
#include "tst_SoundPlayer.moc"
