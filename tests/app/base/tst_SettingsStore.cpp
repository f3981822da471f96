#include "StoreFixture.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::contentOf;
using fixtures::modeOf;
using fixtures::StoreTest;
using fixtures::writeFile;

class TestSettingsStore final : public StoreTest {
    Q_OBJECT

private Q_SLOTS:
    void init() { makePlace(); }

    void theUsersStoreIsTheOneOfOrganisationAndApplication()
    {
        QCOMPARE(SettingsStore::userFilePath(), QSettings(u"Tavoran"_s, u"Terminal"_s).fileName());
        QVERIFY(SettingsStore::userFilePath().endsWith("/Tavoran/Terminal.conf"_L1));
    }

    void theFileIsPrivateBeforeTheFirstWrite()
    {
        const SettingsStore store(m_path);
        QCOMPARE(modeOf(m_path), 0600);
        QCOMPARE(modeOf(QFileInfo(m_path).path()), 0700);
        QCOMPARE(contentOf(m_path), "");
    }

    void theFileAndItsCopyStayPrivateAfterWrites()
    {
        SettingsStore store(m_path);
        store.setValue("auth/token"_L1, u"secret"_s);
        QVERIFY(store.sync());
        QCOMPARE(modeOf(m_path), 0600);
        QCOMPARE(modeOf(store.copyPath()), 0600);
        QVERIFY(contentOf(m_path).contains("token=secret"));
    }

    void aReadableFileOfAnOlderRunIsTightened()
    {
        QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
        writeFile(m_path, "[ui]\ntheme=dark\n");
        QCOMPARE(modeOf(m_path), 0644);
        const QString folder = QFileInfo(m_path).path();
        QVERIFY(
            QFile::setPermissions(folder, QFile::permissions(folder) | QFile::ReadOther | QFile::ExeOther));
        const SettingsStore store(m_path);
        QCOMPARE(modeOf(m_path), 0600);
        QCOMPARE(modeOf(folder), 0700);
        QCOMPARE(store.value("ui/theme"_L1).toString(), u"dark"_s);
    }

    void aFirstStartHasNothingToTell()
    {
        SettingsStore store(m_path);
        QCOMPARE(store.takeNotices(), QStringList());
        SettingsStore again(m_path);
        QCOMPARE(again.takeNotices(), QStringList());
    }

    void everySyncRenewsTheCopy()
    {
        SettingsStore store(m_path);
        store.setValue("ui/theme"_L1, u"dark"_s);
        QVERIFY(store.sync());
        QCOMPARE(contentOf(store.copyPath()), contentOf(m_path));
        store.remove("ui/theme"_L1);
        store.setValue("alerts"_L1, u"[1]"_s);
        QVERIFY(store.sync());
        QCOMPARE(contentOf(store.copyPath()), contentOf(m_path));
        QVERIFY(!contentOf(store.copyPath()).contains("theme"));
    }

    void everyKindOfValueSurvivesVerification()
    {
        const QByteArray bytes = QByteArray::fromHex("00ff010a0d5c2c3b223d");
        const QString text = u"[{\"a\": \"x, y; z=1\\n\"}]\n— ü"_s;
        {
            SettingsStore store(m_path);
            store.setValue("window/state"_L1, bytes);
            store.setValue("charts/layout"_L1, text);
            store.setValue("auth/remember"_L1, true);
            store.setValue("empty"_L1, QString());
            QVERIFY(store.sync());
        }
        SettingsStore store(m_path);
        QCOMPARE(store.takeNotices(), QStringList());
        QCOMPARE(store.value("window/state"_L1).toByteArray(), bytes);
        QCOMPARE(store.value("charts/layout"_L1).toString(), text);
    }

    void aDeletedFileStartsAfreshAndDropsTheCopy()
    {
        QString copy;
        {
            SettingsStore store(m_path);
            store.setValue("auth/token"_L1, u"secret"_s);
            QVERIFY(store.sync());
            copy = store.copyPath();
        }
        QVERIFY(QFile::remove(m_path));
        SettingsStore store(m_path);
        QVERIFY(!store.value("auth/token"_L1).isValid());
        QVERIFY(!QFile::exists(copy));
        QCOMPARE(store.takeNotices(), QStringList());
    }

    void nothingIsWrittenBeforeSync()
    {
        SettingsStore store(m_path);
        store.setValue("ui/theme"_L1, u"dark"_s);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(contentOf(m_path), "");
        QCOMPARE(store.value("ui/theme"_L1).toString(), u"dark"_s);
        store.remove("ui/theme"_L1);
        QVERIFY(!store.value("ui/theme"_L1).isValid());
    }

    void whatIsNotSavedIsSavedInTheEnd()
    {
        {
            SettingsStore store(m_path);
            store.setValue("ui/theme"_L1, u"dark"_s);
        }
        QCOMPARE(contentOf(m_path), "[ui]\ntheme=dark\n");
        QCOMPARE(contentOf(m_path + u".copy"_s), contentOf(m_path));
    }

    void aFolderThatComesBackIsWrittenAgain()
    {
        SettingsStore store(m_path);
        store.setValue("ui/theme"_L1, u"dark"_s);
        QVERIFY(store.sync());

        const QString folder = QFileInfo(m_path).path();
        QVERIFY(QFile::rename(folder, folder + u".away"_s));
        writeFile(folder, "a file where the folder was");
        store.setValue("alerts"_L1, u"[1]"_s);
        QVERIFY(!store.sync());
        QVERIFY(QFile::remove(folder));
        QVERIFY(QFile::rename(folder + u".away"_s, folder));

        QVERIFY(store.sync());
        QVERIFY(contentOf(m_path).contains("alerts=[1]"));
        QCOMPARE(contentOf(store.copyPath()), contentOf(m_path));
    }

    void aFileDeletedMeanwhileIsMadePrivateAgain()
    {
        SettingsStore store(m_path);
        store.setValue("ui/theme"_L1, u"dark"_s);
        QVERIFY(store.sync());
        QVERIFY(QFile::remove(m_path));
        store.setValue("auth/token"_L1, u"secret"_s);
        QVERIFY(store.sync());
        QVERIFY(contentOf(m_path).contains("secret"));
        QCOMPARE(modeOf(m_path), 0600);
    }

    void checkingLeavesNoFilesBehind()
    {
        SettingsStore store(m_path);
        store.setValue("ui/theme"_L1, u"dark"_s);
        QVERIFY(store.sync());
        const QStringList files = QFileInfo(m_path).dir().entryList(QDir::Files | QDir::Hidden, QDir::Name);
        QCOMPARE(
            files, (QStringList{u"Terminal.conf"_s, u"Terminal.conf.copy"_s, u"Terminal.conf.digest"_s}));
    }

    void aFolderThatCannotBeMadeIsSurvived()
    {
        writeFile(m_root->filePath(u"config"_s), "a file where the folder should be");
        SettingsStore store(m_path);
        store.setValue("ui/theme"_L1, u"dark"_s);
        QVERIFY(!store.sync());
        QCOMPARE(store.value("ui/theme"_L1).toString(), u"dark"_s);
    }
};

TAVORAN_TEST(TestSettingsStore)
#include "tst_SettingsStore.moc"
