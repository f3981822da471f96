#include "app/FileFixture.h"
#include "app/base/SettingsLock.h"
#include "app/base/SettingsStore.h"
#include "support/TestMain.h"

#include <QElapsedTimer>

#include <sys/file.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using fixtures::contentOf;
using fixtures::FullDisk;
using fixtures::modeOf;
using fixtures::writeFile;

namespace {

/// Qt 6.8 leaves a file as it was where it finds no room for the new one.
constexpr bool fullDiskCutsFiles = QT_VERSION < QT_VERSION_CHECK(6, 8, 0);

} // namespace

class TestSettingsStore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        ::umask(022);
        // In memory where there is such a folder: a disk takes its time to confirm thousands of small files.
        const QString memory = u"/dev/shm"_s;
        const QString root = QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
        m_root = std::make_unique<QTemporaryDir>(root + u"/tavoran-store-XXXXXX"_s);
        QVERIFY(m_root->isValid());
        m_path = m_root->filePath(u"config/Tavoran/Terminal.conf"_s);
    }

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
        const SettingsStore store(m_path);
        QCOMPARE(modeOf(m_path), 0600);
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

    void aDamagedFileIsReplacedByTheCopy_data()
    {
        QTest::addColumn<QByteArray>("damage");
        QTest::addColumn<bool>("isKept");
        QTest::newRow("emptied by a full disk") << QByteArray() << false;
        QTest::newRow("filled with zeros by a crash") << QByteArray(300, '\0') << true;
        QTest::newRow("not a settings file") << QByteArray("\x7f"
                                                           "ELF\x02\x01 garbage\n\xff\xfe\n")
                                             << true;
        QTest::newRow("cut inside a section") << QByteArray("[ui]\ntheme=light\n[window") << true;
        QTest::newRow("cut inside a quoted value")
            << QByteArray("[ui]\ntheme=light\n[charts]\nlayout=\"[{\\\"symbol\\\": \\\"EURU") << true;
    }
    void aDamagedFileIsReplacedByTheCopy()
    {
        QFETCH(QByteArray, damage);
        QFETCH(bool, isKept);
        {
            SettingsStore store(m_path);
            store.setValue("ui/theme"_L1, u"dark"_s);
            QVERIFY(store.sync());
        }
        writeFile(m_path, damage);
        SettingsStore store(m_path);
        QCOMPARE(store.value("ui/theme"_L1).toString(), u"dark"_s);
        QCOMPARE(contentOf(m_path), contentOf(store.copyPath()));
        QCOMPARE(modeOf(m_path), 0600);
        const QStringList notices = store.takeNotices();
        QCOMPARE(notices.size(), isKept ? 2 : 1);
        QCOMPARE(
            notices.constFirst(), u"The settings file was damaged; its last good copy has been put back."_s);
        QCOMPARE(QFile::exists(store.damagedPath()), isKept);
        if (isKept) {
            QCOMPARE(contentOf(store.damagedPath()), damage);
            QCOMPARE(modeOf(store.damagedPath()), 0600);
            QVERIFY(notices.constLast().contains(store.damagedPath()));
        }
        QCOMPARE(store.takeNotices(), QStringList());
        // The repaired store works on.
        store.setValue("ui/theme"_L1, u"light"_s);
        QVERIFY(store.sync());
    }

    void whatAPersonWritesByHandIsNotDamage_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("no line end at the end") << QByteArray("[ui]\ntheme=light");
        QTest::newRow("a quote in a comment") << QByteArray("; 5\" tube\n[ui]\ntheme=light\n");
        QTest::newRow("a comment after a value") << QByteArray("[ui]\ntheme=light ; my \"choice\n");
        QTest::newRow("quoted") << QByteArray("[ui]\ntheme=\"light\"\n[charts]\nlayout=\"[\\\"a;b\\\"]\"");
        QTest::newRow("line ends of another system") << QByteArray("[ui]\r\ntheme=light\r\n");
        QTest::newRow("letters of the world") << QByteArray("[ui]\ntheme=light\n[auth]\nemail=zo\xc3\xab@x");
    }
    void whatAPersonWritesByHandIsNotDamage()
    {
        QFETCH(QByteArray, content);
        {
            SettingsStore store(m_path);
            store.setValue("ui/theme"_L1, u"dark"_s);
            QVERIFY(store.sync());
        }
        writeFile(m_path, content);
        SettingsStore store(m_path);
        QCOMPARE(store.takeNotices(), QStringList());
        QCOMPARE(store.value("ui/theme"_L1).toString(), u"light"_s);
    }

    void aDamagedFileWithoutACopyGivesDefaultsAndIsKept()
    {
        QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
        writeFile(m_path, "no settings at all");
        SettingsStore store(m_path);
        QVERIFY(!store.value("ui/theme"_L1).isValid());
        QCOMPARE(contentOf(store.damagedPath()), "no settings at all");
        QCOMPARE(store.takeNotices().constFirst(),
            u"The settings file was damaged and there was no good copy; default settings are used."_s);
    }

    void aDamagedFileThatCannotBeKeptElsewhereStays()
    {
        QVERIFY(QDir().mkpath(m_path + u".damaged/in the way"_s));
        writeFile(m_path, "no settings at all");
        SettingsStore store(m_path);
        QCOMPARE(contentOf(m_path), "no settings at all");
        QCOMPARE(store.takeNotices(), QStringList());
    }

    void aDamagedCopyIsNotPutBack()
    {
        QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
        writeFile(m_path, "no settings at all");
        writeFile(m_path + u".copy"_s, "neither is this");
        SettingsStore store(m_path);
        QCOMPARE(contentOf(m_path), "");
        QCOMPARE(store.takeNotices().size(), 2);
    }

    void theDamagedFileSetAsideHoldsNoToken()
    {
        QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
        writeFile(m_path,
            QByteArrayLiteral("[auth]\nemail=a@b.example\ntoken=top-secret\n\0\0token=top-secret\n[broken"));
        SettingsStore store(m_path);
        QVERIFY(contentOf(store.damagedPath()).contains("a@b.example"));
        QVERIFY(!contentOf(store.damagedPath()).contains("top-secret"));
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

    void aFullDiskIsNoticedAndTheNextSyncWritesAgain()
    {
        SettingsStore store(m_path);
        store.setValue("ui/theme"_L1, u"dark"_s);
        QVERIFY(store.sync());
        const QByteArray good = contentOf(store.copyPath());

        const bool saved = [&store] {
            const FullDisk full;
            store.setValue("charts/layout"_L1, QString(100000, u'x'));
            return store.sync();
        }();

        QVERIFY(!saved);
        QCOMPARE(contentOf(store.copyPath()), good);
        QVERIFY(store.sync());
        QVERIFY(contentOf(m_path).contains("layout"));
        QCOMPARE(contentOf(store.copyPath()), contentOf(m_path));
    }

    void noSizeOfAFullDiskLosesWhatWasSaved_data()
    {
        QTest::addColumn<int>("room");
        for (int room = 0; room <= 8192; room += 64)
            QTest::addRow("%d bytes left", room) << room;
    }
    void noSizeOfAFullDiskLosesWhatWasSaved()
    {
        QFETCH(int, room);
        const QString before = layoutOf(40);
        const QString after = layoutOf(70);
        {
            SettingsStore store(m_path);
            saveEverything(store, before);
            QVERIFY(store.sync());
        }
        bool saved = false;
        {
            const FullDisk full(static_cast<rlim_t>(room));
            {
                SettingsStore store(m_path);
                QVERIFY(holdsEverything(store, {before}));
                store.setValue("charts/layout"_L1, after);
                saved = store.sync();
                store.setValue("ui/theme"_L1, u"light"_s);
                static_cast<void>(store.sync());
            }
            SettingsStore store(m_path);
            QVERIFY(holdsEverything(store, saved ? QStringList{after} : QStringList{before, after}));
            store.setValue("auth/email"_L1, u"new@b.example"_s);
            static_cast<void>(store.sync());
        }
        {
            SettingsStore store(m_path);
            QVERIFY(holdsEverything(store, saved ? QStringList{after} : QStringList{before, after}));
            store.setValue("charts/layout"_L1, after);
            QVERIFY(store.sync());
            QCOMPARE(contentOf(store.copyPath()), contentOf(m_path));
        }
        // As another process reads it, which shares nothing with this one.
        const QString elsewhere = m_root->filePath(u"elsewhere/Terminal.conf"_s);
        QVERIFY(QDir().mkpath(QFileInfo(elsewhere).path()));
        writeFile(elsewhere, contentOf(m_path));
        const SettingsStore store(elsewhere);
        QVERIFY(holdsEverything(store, {after}));
    }

    void aSaveThatFailedIsNotWhatTheNextOneGoesBackTo()
    {
        if (!fullDiskCutsFiles)
            QSKIP("this Qt leaves the file as it was, so none is cut");
        const QString before = layoutOf(40);
        auto store = std::make_unique<SettingsStore>(m_path);
        saveEverything(*store, before);
        QVERIFY(store->sync());
        store->setValue("charts/layout"_L1, layoutOf(300));
        // More and more room comes back, enough for what the save before has left, never for all.
        for (const rlim_t room : {1000, 2000, 3000}) {
            const FullDisk full(room);
            QVERIFY(!store->sync());
            QCOMPARE(contentOf(m_path).size(), static_cast<qsizetype>(room));
        }
        {
            const FullDisk full(4000);
            store.reset();
        }
        store = std::make_unique<SettingsStore>(m_path);
        QVERIFY(holdsEverything(*store, {before}));
    }

    void aSaveCutBetweenTwoLinesIsUndone()
    {
        if (!fullDiskCutsFiles)
            QSKIP("this Qt leaves the file as it was, so none is cut");
        const auto wide = [](char letter) { return QString(500, QLatin1Char(letter)); };
        {
            SettingsStore store(m_path);
            store.setValue("a/first"_L1, wide('x'));
            store.setValue("b/last"_L1, wide('y'));
            QVERIFY(store.sync());
        }
        const QByteArray cut = "[a]\nfirst=" + wide('z').toLatin1() + '\n';
        const FullDisk full(static_cast<rlim_t>(cut.size()));
        {
            SettingsStore store(m_path);
            store.setValue("a/first"_L1, wide('z'));
            QVERIFY(!store.sync());
        }
        // Nothing in it shows that there should be more.
        QCOMPARE(contentOf(m_path), cut);
        const SettingsStore store(m_path);
        QCOMPARE(store.value("a/first"_L1).toString(), wide('x'));
        QCOMPARE(store.value("b/last"_L1).toString(), wide('y'));
    }

    void aStoreCutAnywhereIsReplacedByTheCopy()
    {
        const QString layout = layoutOf(2);
        QByteArray whole;
        {
            SettingsStore store(m_path);
            saveEverything(store, layout);
            QVERIFY(store.sync());
            whole = contentOf(m_path);
        }
        for (qsizetype length = 0; length < whole.size(); ++length) {
            writeFile(m_path, whole.first(length));
            SettingsStore store(m_path);
            QVERIFY2(holdsEverything(store, {layout}), qPrintable(QString::number(length)));
            QCOMPARE(contentOf(m_path), whole);
            QCOMPARE(store.takeNotices().size(), length > 0 ? 2 : 1);
        }
    }

    void aSaveThatNeverEndedIsUndone()
    {
        {
            SettingsStore store(m_path);
            saveEverything(store, layoutOf(2));
            QVERIFY(store.sync());
        }
        // As a terminal leaves it that ends between writing and looking at what it wrote.
        QVERIFY(QFile::rename(m_path + u".digest"_s, m_path + u".saving"_s));
        writeFile(m_path, "[auth]\nemail=a@b.example\n");
        SettingsStore store(m_path);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
        QCOMPARE(store.takeNotices().size(), 2);
        QCOMPARE(contentOf(store.damagedPath()), "[auth]\nemail=a@b.example\n");
        store.setValue("ui/theme"_L1, u"light"_s);
        QVERIFY(store.sync());
        // What is edited from now on is an edit again.
        writeFile(m_path, "[ui]\ntheme=dark\n");
        SettingsStore again(m_path);
        QCOMPARE(again.takeNotices(), QStringList());
        QCOMPARE(again.value("ui/theme"_L1).toString(), u"dark"_s);
    }

    void whatAnotherTerminalCouldNotEndIsNotSavedOn_data()
    {
        QTest::addColumn<QByteArray>("left");
        QTest::newRow("cut") << QByteArray("[%General]\nalerts=1\n\n[auth]\nemail=a@b.example\n");
        QTest::newRow("empty") << QByteArray();
    }
    void whatAnotherTerminalCouldNotEndIsNotSavedOn()
    {
        QFETCH(QByteArray, left);
        {
            SettingsStore store(m_path);
            saveEverything(store, layoutOf(2));
            QVERIFY(store.sync());
        }
        {
            SettingsStore store(m_path);
            // As another terminal leaves it that ends while the disk is full.
            QVERIFY(QFile::rename(m_path + u".digest"_s, m_path + u".saving"_s));
            writeFile(m_path, left);
            store.setValue("ui/theme"_L1, u"light"_s);
            QVERIFY(store.sync());
            QCOMPARE(store.value("ui/theme"_L1).toString(), u"light"_s);
            QVERIFY(holdsEverything(store, {layoutOf(2)}));
            QCOMPARE(store.takeNotices().size(), left.isEmpty() ? 1 : 2);
        }
        const SettingsStore store(m_path);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
    }

    void whatAnotherTerminalSavedIsNoDamage()
    {
        SettingsStore store(m_path);
        saveEverything(store, layoutOf(2));
        QVERIFY(store.sync());
        // Two objects of Qt share what they know; a saved file that comes from elsewhere does not.
        const QByteArray other = QByteArray(contentOf(m_path)).replace("theme=dark", "theme=light");
        writeFile(m_path, other);
        writeFile(store.copyPath(), other);
        store.setValue("auth/email"_L1, u"new@b.example"_s);
        QVERIFY(store.sync());
        QCOMPARE(store.takeNotices(), QStringList());
        QCOMPARE(store.value("ui/theme"_L1).toString(), u"light"_s);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
    }

    void anEditByHandWhileTheTerminalRunsCounts()
    {
        SettingsStore store(m_path);
        saveEverything(store, layoutOf(2));
        QVERIFY(store.sync());
        writeFile(m_path, QByteArray(contentOf(m_path)).replace("theme=dark", "theme=light"));
        store.setValue("auth/email"_L1, u"new@b.example"_s);
        QVERIFY(store.sync());
        QCOMPARE(store.takeNotices(), QStringList());
        QCOMPARE(store.value("ui/theme"_L1).toString(), u"light"_s);
        QCOMPARE(contentOf(store.copyPath()), contentOf(m_path));
    }

    void aSaveWaitsForThatOfAnotherTerminal()
    {
        SettingsStore store(m_path);
        store.setValue("ui/theme"_L1, u"dark"_s);
        const SettingsLock others(QFileInfo(m_path).path());
        QVERIFY(others.isHeld());
        QElapsedTimer waited;
        waited.start();
        // Not for ever: the other one may have been stopped.
        QVERIFY(store.sync());
        QVERIFY(waited.elapsed() >= SettingsLock::patienceMs);
    }

    void aStartWaitsForTheSaveOfAnotherTerminal()
    {
        {
            const SettingsStore store(m_path);
        }
        const SettingsLock others(QFileInfo(m_path).path());
        QElapsedTimer waited;
        waited.start();
        const SettingsStore store(m_path);
        QVERIFY(waited.elapsed() >= SettingsLock::patienceMs);
    }

    void theLockIsFreeWhenItsHolderIsGone()
    {
        const SettingsStore store(m_path);
        const QString folder = QFileInfo(m_path).path();
        {
            const SettingsLock first(folder);
            QVERIFY(first.isHeld());
            QVERIFY(!SettingsLock(folder).isHeld());
        }
        QVERIFY(SettingsLock(folder).isHeld());
        QVERIFY(!SettingsLock(folder + u"/not there"_s).isHeld());
    }

    void aSaveWithoutRoomForItsCopyIsSavedOn()
    {
        SettingsStore store(m_path);
        saveEverything(store, layoutOf(2));
        QVERIFY(store.sync());
        const QString copy = store.copyPath();
        QVERIFY(QFile::remove(copy));
        QVERIFY(QDir().mkpath(copy + u"/in the way"_s));
        store.setValue("ui/theme"_L1, u"light"_s);
        QVERIFY(!store.sync());
        QVERIFY(QDir(copy).removeRecursively());
        store.setValue("auth/email"_L1, u"new@b.example"_s);
        QVERIFY(store.sync());
        QCOMPARE(store.value("ui/theme"_L1).toString(), u"light"_s);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
        QCOMPARE(contentOf(copy), contentOf(m_path));
    }

    void anEditAfterASaveWithoutRoomForItsDigestCounts()
    {
        const QString digest = m_path + u".digest"_s;
        {
            SettingsStore store(m_path);
            store.setValue("ui/theme"_L1, u"light"_s);
            QVERIFY(store.sync());
            QVERIFY(QFile::rename(digest, m_path + u".saving"_s));
            QVERIFY(QDir().mkpath(digest + u"/in the way"_s));
            store.setValue("ui/theme"_L1, u"dark"_s);
            QVERIFY(store.sync());
        }
        QVERIFY(QDir(digest).removeRecursively());
        {
            SettingsStore store(m_path);
            QCOMPARE(store.value("ui/theme"_L1).toString(), u"dark"_s);
            QCOMPARE(store.takeNotices(), QStringList());
        }
        writeFile(m_path, "[ui]\ntheme=blue\n");
        SettingsStore store(m_path);
        QCOMPARE(store.value("ui/theme"_L1).toString(), u"blue"_s);
        QCOMPARE(store.takeNotices(), QStringList());
    }

    void aSaveThatNeverBeganIsNoReasonToUndo()
    {
        {
            SettingsStore store(m_path);
            saveEverything(store, layoutOf(2));
            QVERIFY(store.sync());
        }
        QVERIFY(QFile::rename(m_path + u".digest"_s, m_path + u".saving"_s));
        SettingsStore store(m_path);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
        QCOMPARE(store.takeNotices(), QStringList());
    }

    void aDigestWithoutACopyTellsThatTheFileIsWhole()
    {
        {
            SettingsStore store(m_path);
            saveEverything(store, layoutOf(2));
            QVERIFY(store.sync());
        }
        writeFile(m_path + u".copy"_s, contentOf(m_path).first(100));
        SettingsStore store(m_path);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
        QCOMPARE(store.takeNotices(), QStringList());
        store.setValue("ui/theme"_L1, u"light"_s);
        QVERIFY(store.sync());
        QCOMPARE(contentOf(store.copyPath()), contentOf(m_path));
    }

    void aStoreFromBeforeThereWereDigestsIsTakenAsItIs()
    {
        QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
        writeFile(m_path, "[auth]\nemail=new@b.example\n\n[ui]\ntheme=dark\n");
        writeFile(m_path + u".copy"_s, "[auth]\nemail=old@b.example\n\n[ui]\ntheme=dark\n");
        SettingsStore store(m_path);
        QCOMPARE(store.value("auth/email"_L1).toString(), u"new@b.example"_s);
        QCOMPARE(store.takeNotices(), QStringList());
        QVERIFY(store.sync());
        QVERIFY(QFile::exists(m_path + u".digest"_s));
        QCOMPARE(modeOf(m_path + u".digest"_s), 0600);
    }

    void linesTakenFromTheEndByHandAreToldAndKept()
    {
        {
            SettingsStore store(m_path);
            store.setValue("auth/email"_L1, u"a@b.example"_s);
            store.setValue("ui/theme"_L1, u"dark"_s);
            QVERIFY(store.sync());
        }
        writeFile(m_path, "[auth]\nemail=a@b.example\n");
        SettingsStore store(m_path);
        QCOMPARE(store.value("ui/theme"_L1).toString(), u"dark"_s);
        QCOMPARE(store.takeNotices().size(), 2);
        QCOMPARE(contentOf(store.damagedPath()), "[auth]\nemail=a@b.example\n");
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

    void whatAKilledTerminalLeftIsRemoved()
    {
        {
            const SettingsStore store(m_path);
        }
        const QString leftOver = QFileInfo(m_path).path() + u"/Terminal.check.abcdef"_s;
        writeFile(leftOver, "[auth]\ntoken=top-secret\n");
        const QString other = QFileInfo(m_path).path() + u"/Terminal.checklist"_s;
        writeFile(other, "a person's own");
        const SettingsStore store(m_path);
        QVERIFY(!QFile::exists(leftOver));
        QVERIFY(QFile::exists(other));
    }

    void whatAnotherTerminalChecksJustNowStays()
    {
        {
            const SettingsStore store(m_path);
        }
        const QString used = QFileInfo(m_path).path() + u"/Terminal.check.abcdef"_s;
        writeFile(used, "[ui]\ntheme=dark\n");
        QFile file(used);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QCOMPARE(::flock(file.handle(), LOCK_EX | LOCK_NB), 0);
        {
            const SettingsStore store(m_path);
            QVERIFY(QFile::exists(used));
        }
        file.close(); // as the end of its process does
        const SettingsStore store(m_path);
        QVERIFY(!QFile::exists(used));
    }

    void aLinkInPlaceOfALeftOverIsNotFollowed()
    {
        {
            const SettingsStore store(m_path);
        }
        const QString target = m_root->filePath(u"target"_s);
        writeFile(target, "a person's own");
        // Who follows it finds a file in use, and lets it be.
        QFile used(target);
        QVERIFY(used.open(QIODevice::ReadOnly));
        QCOMPARE(::flock(used.handle(), LOCK_EX | LOCK_NB), 0);
        const QString link = QFileInfo(m_path).path() + u"/Terminal.check.abcdef"_s;
        QVERIFY(QFile::link(target, link));
        const SettingsStore store(m_path);
        QCOMPARE(contentOf(target), "a person's own");
        QVERIFY(!QFileInfo(link).isSymLink());
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

private:
    static QString layoutOf(int charts)
    {
        return u"[{\"symbol\": \"EURUSD\", \"timeframe\": \"15m\"}, x]\n"_s.repeated(charts);
    }
    static void saveEverything(SettingsStore& store, const QString& layout)
    {
        store.setValue("alerts"_L1, u"[{\"symbol\":\"EURUSD\",\"price\":1.1}]"_s);
        store.setValue("auth/email"_L1, u"a@b.example"_s);
        store.setValue("auth/token"_L1, u"token-one"_s);
        store.setValue("charts/layout"_L1, layout);
        store.setValue("ui/theme"_L1, u"dark"_s);
        store.setValue("window/state"_L1, QByteArray::fromHex("00ff01ab"));
    }
    static bool holdsEverything(const SettingsStore& store, const QStringList& layouts)
    {
        const QString email = store.value("auth/email"_L1).toString();
        const QString theme = store.value("ui/theme"_L1).toString();
        return store.value("alerts"_L1).toString() == u"[{\"symbol\":\"EURUSD\",\"price\":1.1}]"_s
            && (email == u"a@b.example"_s || email == u"new@b.example"_s)
            && store.value("auth/token"_L1).toString() == u"token-one"_s
            && layouts.contains(store.value("charts/layout"_L1).toString())
            && (theme == u"dark"_s || theme == u"light"_s)
            && store.value("window/state"_L1).toByteArray() == QByteArray::fromHex("00ff01ab");
    }

    std::unique_ptr<QTemporaryDir> m_root;
    QString m_path;
};

TAVORAN_TEST(TestSettingsStore)
#include "tst_SettingsStore.moc"
