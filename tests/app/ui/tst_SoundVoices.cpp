#include "app/base/SoundSynthesis.h"
#include "app/ui/SoundVoices.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class TestSoundVoices : public QObject {
    Q_OBJECT

    [[nodiscard]] SoundVoices::Output output()
    {
        return {
            .available = [this] { return m_deviceThere; },
            .load = [this](const QString& path) -> std::function<void()> {
                m_loaded.append(QFileInfo(path).fileName());
                return [this, path] { m_played.append(QFileInfo(path).fileName()); };
            },
        };
    }

private Q_SLOTS:
    void init()
    {
        m_deviceThere = true;
        m_loaded.clear();
        m_played.clear();
    }

    // First, while no sound file of this process exists yet: a file is tried once a run.
    void anUnwritableTemporaryFolderIsSilence()
    {
        QVERIFY(QDir().mkdir(QDir::tempPath() + u"/tavoran-error.wav"_s));
        SoundVoices voices(output());
        voices.play(SoundKind::Error);
        QCoreApplication::processEvents();
        QCOMPARE(m_loaded, QStringList());
        QCOMPARE(m_played, QStringList());
    }

    void aLinkUnderTheFilesNameIsNeitherWrittenNorPlayed()
    {
        const QString target = QDir::tempPath() + u"/precious"_s;
        QVERIFY(QFile::link(target, QDir::tempPath() + u"/tavoran-close.wav"_s));
        SoundVoices voices(output());
        voices.play(SoundKind::Close);
        QCoreApplication::processEvents();
        QVERIFY(!QFile::exists(target));
        QCOMPARE(m_loaded, QStringList());
    }

    // Before any other case writes the same file: it is written once a run.
    void withoutADeviceTheFileIsWrittenAndNothingIsLoaded()
    {
        m_deviceThere = false;
        SoundVoices voices(output());
        voices.play(SoundKind::Open);
        QCoreApplication::processEvents();
        QCOMPARE(m_loaded, QStringList());
        QFile file(QDir::tempPath() + u"/tavoran-open.wav"_s);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), synthesize({{660, 0.00, 0.09}, {880, 0.09, 0.14}}, 0.28));
        // A device that is plugged in later is used.
        m_deviceThere = true;
        voices.play(SoundKind::Open);
        QCoreApplication::processEvents();
        QCOMPARE(m_played.size(), 1);
    }

    void nothingHappensInFrontOfTheCaller()
    {
        SoundVoices voices(output());
        voices.play(SoundKind::Fill);
        QCOMPARE(m_loaded, QStringList());
        QVERIFY(!QFile::exists(QDir::tempPath() + u"/tavoran-fill.wav"_s));
        QCoreApplication::processEvents();
        QCOMPARE(m_played, QStringList{u"tavoran-fill.wav"_s});
    }

    void playingTwiceRestartsTheSameEffect()
    {
        SoundVoices voices(output());
        voices.play(SoundKind::Open);
        voices.play(SoundKind::Open);
        voices.play(SoundKind::Fill);
        QCoreApplication::processEvents();
        QCOMPARE(m_loaded, (QStringList{u"tavoran-open.wav"_s, u"tavoran-fill.wav"_s}));
        QCOMPARE(
            m_played, (QStringList{u"tavoran-open.wav"_s, u"tavoran-open.wav"_s, u"tavoran-fill.wav"_s}));
    }

    void aKindThatDoesNotExistIsSilence()
    {
        SoundVoices voices(output());
        voices.play(static_cast<SoundKind>(9));
        QCoreApplication::processEvents();
        QCOMPARE(m_loaded, QStringList());
    }

private:
    bool m_deviceThere = true;
    QStringList m_loaded;
    QStringList m_played;
};

TAVORAN_TEST(TestSoundVoices)
#include "tst_SoundVoices.moc"
