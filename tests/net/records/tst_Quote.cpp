#include "net/records/Quote.h"

#include "support/ParseJson.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::parse;

class TestQuote final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_symbols_prices_are_found_in_the_snapshot()
    {
        const auto quote
            = findQuote(parse(R"({"A":{"bid":1,"ask":2},"B":{"bid":"1.5","ask":1.6}})"), u"B"_s, 5);
        QVERIFY(quote);
        QCOMPARE(quote->bid, 1.5);
        QCOMPARE(quote->ask, 1.6);
        QVERIFY(quote->isComplete());
    }

    void a_symbol_that_is_not_named_has_no_quote()
    {
        QVERIFY(!findQuote(parse(R"({"A":{"bid":1,"ask":2}})"), u"a"_s, 5));
        QVERIFY(!findQuote({}, {}, 5));
    }

    void a_symbol_with_the_rarest_letters_is_found()
    {
        // Qt keeps a key with an escape in it as another kind of text, and orders letters beyond U+FFFF by
        // kind.
        const QJsonObject prices
            = parse("{\"\U0001F600\":{\"bid\":1,\"ask\":2},\"\\uFFFD\":{\"bid\":3,\"ask\":4}}");
        const auto quote = findQuote(prices, u"\U0001F600"_s, 5);
        QVERIFY(quote);
        QCOMPARE(quote->ask, 2.0);
        QCOMPARE(findQuote(prices, u"\uFFFD"_s, 5)->ask, 4.0);
        QVERIFY(!findQuote(prices, u"\U0001F601"_s, 5));
    }

    void a_price_that_cannot_be_read_is_zero_data()
    {
        QTest::addColumn<QByteArray>("record");
        QTest::addColumn<double>("bid");
        QTest::addColumn<double>("ask");
        QTest::newRow("no object") << "7"_ba << 0.0 << 0.0;
        QTest::newRow("nothing") << "null"_ba << 0.0 << 0.0;
        QTest::newRow("no ask") << R"({"bid":1})"_ba << 1.0 << 0.0;
        QTest::newRow("no bid") << R"({"ask":1})"_ba << 0.0 << 1.0;
        QTest::newRow("no number") << R"({"bid":"x","ask":1})"_ba << 0.0 << 1.0;
        QTest::newRow("not a price") << R"({"bid":"nan","ask":1e308})"_ba << 0.0 << 0.0;
        QTest::newRow("below zero") << R"({"bid":-1,"ask":1})"_ba << -1.0 << 1.0;
    }
    void a_price_that_cannot_be_read_is_zero()
    {
        QFETCH(QByteArray, record);
        const auto quote = findQuote(parse("{\"A\":" + record + "}"), u"A"_s, 5);
        QVERIFY(quote);
        QTEST(quote->bid, "bid");
        QTEST(quote->ask, "ask");
        QVERIFY(!quote->isComplete());
    }

    void what_is_no_price_of_its_symbol_is_zero()
    {
        const QJsonObject prices
            = parse(R"({"A":{"bid":1e-9,"ask":"1e12"},"B":{"bid":-0.004,"ask":-0.006}})");
        QVERIFY((findQuote(prices, u"A"_s, 5) == Quote{0.0, 0.0}));
        QVERIFY((findQuote(prices, u"A"_s, 9) == Quote{1e-9, 0.0}));
        QVERIFY((findQuote(prices, u"B"_s, 2) == Quote{0.0, -0.006}));
        QVERIFY((readQuote(prices.value("B"_L1), 3) == Quote{-0.004, -0.006}));
    }
};

TAVORAN_TEST(TestQuote)
#include "tst_Quote.moc"
