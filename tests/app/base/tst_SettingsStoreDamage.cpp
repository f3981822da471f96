#include "StoreFixture.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::contentOf;
using fixtures::holdsEverything;
using fixtures::layoutOf;
using fixtures::modeOf;
using fixtures::saveEverything;
using fixtures::StoreTest;
using fixtures::writeFile;

class TestSettingsStoreDamage final : public StoreTest {
    Q_OBJECT

private Q_SLOTS:
    void init() { makePlace(); }

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
        saveAndEnd();
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
        QTest::newRow("without a section") << QByteArray("ui/theme=light\n");
        QTest::newRow("without a section, before others")
            << QByteArray("ui/theme=light\n[auth]\nemail=a@x\n");
        QTest::newRow("letters of the world") << QByteArray("[ui]\ntheme=light\n[auth]\nemail=zo\xc3\xab@x");
    }
    void whatAPersonWritesByHandIsNotDamage()
    {
        QFETCH(QByteArray, content);
        saveAndEnd();
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

    void aDamagedFileIsNoBetterForACopyThatIsTheSame()
    {
        QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
        for (const QString& ending : {QString(), u".copy"_s})
            writeFile(m_path + ending, "[ui\ntheme=dark\n");
        SettingsStore store(m_path);
        QCOMPARE(store.takeNotices().size(), 2);
        QCOMPARE(contentOf(store.damagedPath()), "[ui\ntheme=dark\n");
        store.setValue("ui/theme"_L1, u"light"_s);
        QVERIFY(store.sync());
    }

    void anEntryThatCannotBeSavedIsLeftAside_data()
    {
        QTest::addColumn<QByteArray>("odd");
        QTest::addColumn<bool>("isLeftOut");
        QTest::newRow("a section that begins with a backslash")
            << QByteArray("[\\ui]\ntheme=light\n") << true;
        QTest::newRow("bytes that are no text")
            << QByteArray("[\\\x88\xba[[General]\nalerts=\"[\x85\xa3\xdd\x9e\"\n") << true;
        QTest::newRow("no section") << QByteArray("[General]\n\\theme=light\n") << true;
        // Such a line alone is no entry, but Qt remembers it as a fault.
        QTest::newRow("no section and no name, behind a line without a value")
            << QByteArray("[]\nodd\n=light\n") << true;
        // These come back as they were.
        QTest::newRow("a section that ends with one") << QByteArray("[ui\\]\ntheme=light\n") << false;
        QTest::newRow("a name that begins with one") << QByteArray("[ui]\n\\theme=light\n") << false;
        QTest::newRow("a name that ends with one") << QByteArray("[ui]\ntheme\\=light\n") << false;
        QTest::newRow("two in a name") << QByteArray("[ui]\na\\\\b=light\n") << false;
        QTest::newRow("no name") << QByteArray("[ui]\n=light\n") << false;
        QTest::newRow("one in a name") << QByteArray("[ui]\na\\b=light\n") << false;
        for (const char* value : {"one", "one, two", "@ByteArray()"}) {
            QTest::addRow("%s before an empty section", value) << "[odd]\nlater=" + QByteArray(value)
                    + "\n[odd%2Faa]\n" << false;
        }
        QTest::newRow("a name of the world") << QByteArray("[\xc3\xbc]\n%U20AC=light\n") << false;
    }
    void anEntryThatCannotBeSavedIsLeftAside()
    {
        QFETCH(QByteArray, odd);
        QFETCH(bool, isLeftOut);
        saveAndEnd();
        const QByteArray edited = contentOf(m_path) + odd;
        writeFile(m_path, edited);
        const QString asEdited = QFileInfo(m_path).path() + "/edited"_L1;
        writeFile(asEdited, edited);
        const QStringList keys = QSettings(asEdited, QSettings::IniFormat).allKeys();
        {
            SettingsStore store(m_path);
            QVERIFY(holdsEverything(store, {layoutOf(2)}));
            store.setValue("ui/theme"_L1, u"light"_s);
            QVERIFY(store.sync());
            const QStringList notices = store.takeNotices();
            QCOMPARE(notices.size(), isLeftOut ? 2 : 0);
            QCOMPARE(QFile::exists(store.damagedPath()), isLeftOut);
            if (isLeftOut) {
                QCOMPARE(notices.constFirst(),
                    u"The settings file had entries that cannot be saved; they have been left out."_s);
                QVERIFY(notices.constLast().contains(store.damagedPath()));
                QVERIFY(contentOf(store.damagedPath()).endsWith(odd));
                QVERIFY(!contentOf(store.damagedPath()).contains("token"));
                QCOMPARE(modeOf(store.damagedPath()), 0600);
                QCOMPARE(modeOf(m_path), 0600);
            }
        }
        SettingsStore store(m_path);
        QCOMPARE(store.takeNotices(), QStringList());
        QCOMPARE(store.value("ui/theme"_L1).toString(), u"light"_s);
        QCOMPARE(QSettings(m_path, QSettings::IniFormat).allKeys() != keys, isLeftOut);
    }

    void anEntryThatCannotBeSavedAppearsBetweenTwoSaves()
    {
        SettingsStore store(m_path);
        saveEverything(store, layoutOf(2));
        QVERIFY(store.sync());
        writeFile(m_path, contentOf(m_path) + "[\\ui]\nodd=1\n");
        store.setValue("ui/theme"_L1, u"light"_s);
        QVERIFY(store.sync());
        QCOMPARE(store.takeNotices().size(), 2);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
    }

    void aCopyWithAnEntryThatCannotBeSavedIsPutBackWithoutIt()
    {
        saveAndEnd();
        const QByteArray odd = contentOf(m_path) + "[\\ui]\nodd=1\n";
        // As it was left where such a file was saved: the save had begun, and was never confirmed.
        QVERIFY(QFile::rename(m_path + u".digest"_s, m_path + u".saving"_s));
        writeFile(m_path + u".copy"_s, odd);
        writeFile(m_path, "[ui]\ntheme=dark\n");
        SettingsStore store(m_path);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
        QCOMPARE(store.takeNotices().size(), 3);
        QVERIFY(contentOf(store.damagedPath()).startsWith("[ui]\ntheme=dark\n"));
        QVERIFY(contentOf(store.damagedPath()).endsWith("odd=1\n"));
        store.setValue("ui/theme"_L1, u"light"_s);
        QVERIFY(store.sync());
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
        saveAndEnd();
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

    void aWholeSaveThatNobodyLookedAtCounts()
    {
        saveAndEnd();
        leaveAsKilledBeforeTheLook(layoutOf(3));
        {
            SettingsStore store(m_path);
            QVERIFY(holdsEverything(store, {layoutOf(3)}));
            QCOMPARE(contentOf(store.copyPath()), contentOf(m_path));
            QCOMPARE(store.takeNotices(), QStringList());
            QVERIFY(!QFile::exists(store.damagedPath()));
        }
        QVERIFY(!QFile::exists(m_path + u".saving"_s));
        QCOMPARE(modeOf(m_path + u".digest"_s), 0600);
    }

    void anEditThatCannotBeKeptStaysUntilItCan_data()
    {
        QTest::addColumn<QByteArray>("edit");
        QTest::addColumn<bool>("saveHadBegun");
        QTest::newRow("damaged") << QByteArray("[ui]\ntheme=light\n[window") << false;
        QTest::newRow("after a save that never ended") << QByteArray("[ui]\ntheme=light\n") << true;
    }
    void anEditThatCannotBeKeptStaysUntilItCan()
    {
        QFETCH(QByteArray, edit);
        QFETCH(bool, saveHadBegun);
        saveAndEnd();
        if (saveHadBegun)
            QVERIFY(QFile::rename(m_path + u".digest"_s, m_path + u".saving"_s));
        writeFile(m_path, edit);
        const QByteArray copy = contentOf(m_path + u".copy"_s);
        QVERIFY(QDir().mkpath(m_path + u".damaged/in the way"_s));
        SettingsStore store(m_path);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
        const QStringList notices = store.takeNotices();
        QCOMPARE(notices.size(), 1);
        QVERIFY(notices.constFirst().startsWith("The settings file may be damaged, and there is no room"_L1));
        store.setValue("auth/email"_L1, u"new@b.example"_s);
        QVERIFY(!store.sync());
        QCOMPARE(contentOf(m_path), edit);
        QCOMPARE(contentOf(store.copyPath()), copy);
        QCOMPARE(store.takeNotices(), QStringList());

        QVERIFY(QDir(store.damagedPath()).removeRecursively());
        QVERIFY(store.sync());
        QCOMPARE(contentOf(store.damagedPath()), edit);
        QCOMPARE(store.takeNotices().size(), 2);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
        QCOMPARE(contentOf(store.copyPath()), contentOf(m_path));
        QVERIFY(contentOf(m_path).contains("new@b.example"));
        SettingsStore again(m_path);
        QVERIFY(holdsEverything(again, {layoutOf(2)}));
        QCOMPARE(again.takeNotices(), QStringList());
    }

    void aSaveThatDiffersOnlyInBytesThatAreNoTextIsUndone()
    {
        saveAndEnd();
        const QByteArray before = contentOf(m_path);
        leaveAsKilledBeforeTheLook(layoutOf(3));
        const QByteArray whole = contentOf(m_path);
        writeFile(m_path, QByteArray(whole).replace("\\xff", "\\xfe"));
        QVERIFY(contentOf(m_path) != whole);
        SettingsStore store(m_path);
        QCOMPARE(contentOf(m_path), before);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
        QCOMPARE(store.takeNotices().size(), 2);
    }

    void aSaveThatThereIsNoRoomToCheckIsJudgedOnceThereIs_data()
    {
        QTest::addColumn<bool>("isWhole");
        QTest::newRow("whole") << true;
        QTest::newRow("cut") << false;
    }
    void aSaveThatThereIsNoRoomToCheckIsJudgedOnceThereIs()
    {
        QFETCH(bool, isWhole);
        saveAndEnd();
        const QByteArray before = contentOf(m_path);
        leaveAsKilledBeforeTheLook(layoutOf(3));
        if (!isWhole)
            writeFile(m_path, contentOf(m_path).chopped(20));
        const QByteArray left = contentOf(m_path);
        std::unique_ptr<SettingsStore> store;
        {
            const fixtures::FullDisk full(10);
            store = std::make_unique<SettingsStore>(m_path);
            QVERIFY(holdsEverything(*store, {layoutOf(2)}));
            QCOMPARE(store->takeNotices().size(), 1);
            store->setValue("auth/email"_L1, u"new@b.example"_s);
            QVERIFY(!store->sync());
            QCOMPARE(contentOf(m_path), left);
            QCOMPARE(contentOf(store->copyPath()), before);
            QCOMPARE(store->takeNotices(), QStringList());
        }
        QVERIFY(store->sync());
        QVERIFY(holdsEverything(*store, {layoutOf(isWhole ? 3 : 2)}));
        QCOMPARE(store->takeNotices().size(), isWhole ? 0 : 2);
        store.reset();
        SettingsStore again(m_path);
        QVERIFY(holdsEverything(again, {layoutOf(isWhole ? 3 : 2)}));
        QCOMPARE(again.value("auth/email"_L1).toString(), u"new@b.example"_s);
        QCOMPARE(again.takeNotices(), QStringList());
    }

    void aCutSaveIsUndoneWhateverItsMarkTells()
    {
        saveAndEnd();
        const QByteArray before = contentOf(m_path);
        leaveAsKilledBeforeTheLook(layoutOf(3));
        const QByteArray mark = contentOf(m_path + u".saving"_s);
        const QByteArray whole = contentOf(m_path);
        for (qsizetype length = 0; length < whole.size() - 1; ++length) {
            writeFile(m_path + u".copy"_s, before);
            writeFile(m_path + u".saving"_s, mark);
            QFile::remove(m_path + u".digest"_s);
            writeFile(m_path, whole.first(length));
            const SettingsStore store(m_path);
            QVERIFY2(holdsEverything(store, {layoutOf(2)}), qPrintable(QString::number(length)));
        }
    }

    void aMarkCutAnywhereUndoesTheSave()
    {
        saveAndEnd();
        const QByteArray before = contentOf(m_path);
        leaveAsKilledBeforeTheLook(layoutOf(3));
        const QByteArray mark = contentOf(m_path + u".saving"_s);
        const QByteArray whole = contentOf(m_path);
        for (qsizetype length = 0; length < mark.size(); ++length) {
            writeFile(m_path + u".copy"_s, before);
            writeFile(m_path + u".saving"_s, mark.first(length));
            QFile::remove(m_path + u".digest"_s);
            writeFile(m_path, whole);
            SettingsStore store(m_path);
            QVERIFY2(holdsEverything(store, {layoutOf(2)}), qPrintable(QString::number(length)));
            QCOMPARE(store.takeNotices().size(), 2);
        }
    }

    void aSaveThatNeverBeganIsNoReasonToUndo()
    {
        saveAndEnd();
        QVERIFY(QFile::rename(m_path + u".digest"_s, m_path + u".saving"_s));
        SettingsStore store(m_path);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
        QCOMPARE(store.takeNotices(), QStringList());
    }

    void aFirstSaveThatNeverBeganIsNoReasonToUndo()
    {
        saveAndEnd();
        // As of a file without a digest, which an older terminal has left: the mark then holds none either.
        QVERIFY(QFile::remove(m_path + u".digest"_s));
        writeFile(m_path + u".saving"_s, "\nvalues to come");
        SettingsStore store(m_path);
        QVERIFY(holdsEverything(store, {layoutOf(2)}));
        QCOMPARE(store.takeNotices(), QStringList());
        QVERIFY(!QFile::exists(store.damagedPath()));
    }

    void aDigestWithoutACopyTellsThatTheFileIsWhole()
    {
        saveAndEnd();
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

private:
    /// Everything with another layout: written, and the copy not renewed yet.
    void leaveAsKilledBeforeTheLook(const QString& layout) const
    {
        const QByteArray before = contentOf(m_path);
        const QByteArray digest = contentOf(m_path + u".digest"_s);
        saveAndEnd(layout);
        const QByteArray values = digestOf(settingsValues(QSettings(m_path, QSettings::NativeFormat)));
        writeFile(m_path + u".copy"_s, before);
        writeFile(m_path + u".saving"_s, digest + '\n' + values);
        QFile::remove(m_path + u".digest"_s);
    }
};

TAVORAN_TEST(TestSettingsStoreDamage)
#include "tst_SettingsStoreDamage.moc"
