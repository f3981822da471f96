#include "StoreFixture.h"
#include "app/base/SettingsLock.h"
#include "support/TestMain.h"

#include <QElapsedTimer>

#include <sys/file.h>

using namespace Qt::StringLiterals;
using fixtures::contentOf;
using fixtures::holdsEverything;
using fixtures::layoutOf;
using fixtures::saveEverything;
using fixtures::StoreTest;
using fixtures::writeFile;

class TestSettingsStoreSharing final : public StoreTest {
    Q_OBJECT

private Q_SLOTS:
    void init() { makePlace(); }

    void whatAnotherTerminalCouldNotEndIsNotSavedOn_data()
    {
        QTest::addColumn<QByteArray>("left");
        QTest::newRow("cut") << QByteArray("[%General]\nalerts=1\n\n[auth]\nemail=a@b.example\n");
        QTest::newRow("empty") << QByteArray();
    }
    void whatAnotherTerminalCouldNotEndIsNotSavedOn()
    {
        QFETCH(QByteArray, left);
        saveAndEnd();
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

    void whatAKilledTerminalSavedHalfIsRemoved_data()
    {
        QTest::addColumn<QString>("end");
        QTest::addColumn<bool>("isRemoved");
        QTest::newRow("settings") << u".aBcdef"_s << true;
        QTest::newRow("copy") << u".copy.KQxbWw"_s << true;
        QTest::newRow("damaged") << u".damaged.abcdeF"_s << true;
        QTest::newRow("lock") << u".lock"_s << true;
        QTest::newRow("lock of the lock") << u".lock.rmlock.rmlock"_s << true;
        QTest::newRow("a person's copy") << u".backup"_s << false;
        QTest::newRow("a person's other copy") << u".Before"_s << false;
        QTest::newRow("a person's third copy") << u".LATEST"_s << false;
        QTest::newRow("a person's long name") << u".fromWork"_s << false;
    }
    void whatAKilledTerminalSavedHalfIsRemoved()
    {
        QFETCH(QString, end);
        QFETCH(bool, isRemoved);
        saveAndEnd();
        const QByteArray saved = contentOf(m_path);
        writeFile(m_path + end, "[auth]\ntoken=top-secret\n");
        const SettingsStore store(m_path);
        QCOMPARE(!QFile::exists(m_path + end), isRemoved);
        QCOMPARE(contentOf(m_path), saved);
    }

    void anEmptyLockOfAKilledTerminalHoldsUpNoSave()
    {
        SettingsStore store(m_path);
        writeFile(m_path + u".lock"_s, ""); // killed before it wrote its number
        store.setValue("ui/theme"_L1, u"dark"_s);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(store.sync());
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
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
};

TAVORAN_TEST(TestSettingsStoreSharing)
#include "tst_SettingsStoreSharing.moc"
