#include "StoreFixture.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::contentOf;
using fixtures::FullDisk;
using fixtures::holdsEverything;
using fixtures::layoutOf;
using fixtures::saveEverything;
using fixtures::StoreTest;
using fixtures::writeFile;

namespace {

/// Qt 6.8 leaves a file as it was where it finds no room for the new one.
constexpr bool fullDiskCutsFiles = QT_VERSION < QT_VERSION_CHECK(6, 8, 0);

} // namespace

class TestSettingsStoreFullDisk final : public StoreTest {
    Q_OBJECT

private Q_SLOTS:
    void init() { makePlace(); }

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
        saveAndEnd(before);
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
        for (const rlim_t room : {rlim_t(1000), rlim_t(2000), rlim_t(3000)}) {
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
};

TAVORAN_TEST(TestSettingsStoreFullDisk)
#include "tst_SettingsStoreFullDisk.moc"
