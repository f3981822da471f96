#include "mainwindow/PanesLayout.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class tst_PanesLayout final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void what_is_written_is_read()
    {
        PanesLayout layout;
        layout.columns.insert(u"tradeList"_s, {17, {80, 0, 140}});
        layout.columns.insert(u"newsList"_s, {17, {}});
        layout.tab = u"newsPage"_s;
        layout.popup = "\x01\x00\xff"_ba;
        QCOMPARE(readPanesLayout(panesLayoutText(layout)), layout);
        QCOMPARE(readPanesLayout(panesLayoutText({})), PanesLayout());
        QVERIFY(!isLaterPanesLayout(panesLayoutText(layout)));
    }

    void other_formats_are_not_read_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("later");
        QTest::newRow("nothing") << QString() << false;
        QTest::newRow("no JSON") << u"columns"_s << false;
        QTest::newRow("cut") << u"{\"version\":1"_s << false;
        QTest::newRow("a list") << u"[1]"_s << false;
        QTest::newRow("no version") << u"{\"tab\":\"x\"}"_s << false;
        QTest::newRow("version as text") << u"{\"version\":\"1\"}"_s << false;
        QTest::newRow("an impossible version") << u"{\"version\":0}"_s << false;
        QTest::newRow("the next version") << u"{\"version\":2}"_s << true;
        QTest::newRow("a far version") << u"{\"version\":70}"_s << true;
    }
    void other_formats_are_not_read()
    {
        QFETCH(const QString, text);
        QFETCH(const bool, later);
        QCOMPARE(readPanesLayout(text), std::nullopt);
        QCOMPARE(isLaterPanesLayout(text), later);
    }

    void a_width_follows_the_letters_and_stays_in_reach_data()
    {
        QTest::addColumn<int>("saved");
        QTest::addColumn<int>("savedFont");
        QTest::addColumn<int>("font");
        QTest::addColumn<int>("width");
        QTest::newRow("same font") << 90 << 16 << 16 << 90;
        QTest::newRow("larger font") << 90 << 16 << 32 << 180;
        QTest::newRow("smaller font") << 90 << 32 << 16 << 45;
        QTest::newRow("unknown font") << 90 << 0 << 16 << 90;
        QTest::newRow("no font") << 90 << 16 << 0 << 90;
        QTest::newRow("too narrow") << 3 << 16 << 16 << 24;
        QTest::newRow("narrow by its font") << 30 << 32 << 16 << 24;
        QTest::newRow("too wide") << 1'000'000 << 16 << 16 << 2000;
        QTest::newRow("wide by its font") << 2000 << 1 << 1'000'000 << 2000;
        QTest::newRow("was hidden") << 0 << 16 << 16 << 0;
        QTest::newRow("absurd") << -5 << 16 << 16 << 0;
    }
    void a_width_follows_the_letters_and_stays_in_reach()
    {
        QFETCH(const int, saved);
        QFETCH(const int, savedFont);
        QFETCH(const int, font);
        QTEST(fittedColumnWidth(saved, savedFont, font), "width");
    }
};

TAVORAN_TEST(tst_PanesLayout)
#include "tst_PanesLayout.moc"
