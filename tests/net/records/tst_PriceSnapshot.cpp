#include "net/records/PriceSnapshot.h"

#include "support/ParseJson.h"
#include "support/TestMain.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using fixtures::parse;

class TestPriceSnapshot final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void every_record_is_read_by_the_rule_for_quotes()
    {
        const QJsonObject prices = parse(R"({"B":{"bid":"1.5","ask":1.6},"A":{"bid":1,"ask":2},"C":7,
        "D":{"ask":"x"},"":{"bid":-3,"ask":1e300}})");
        const PriceSnapshot snapshot(prices);
        QCOMPARE(snapshot.entries().size(), 5U);
        for (const PriceSnapshot::Entry& entry : snapshot.entries()) {
            QVERIFY(entry.quote == readQuote(prices.value(entry.symbol), 5));
            const Quote* found = snapshot.find(entry.symbol);
            QVERIFY(found && *found == entry.quote);
        }
        QVERIFY((*snapshot.find(u"B"_s) == Quote{1.5, 1.6}));
    }

    void a_symbol_that_is_not_named_is_not_found()
    {
        const PriceSnapshot snapshot(parse(R"({"B":{"bid":1},"D":{"bid":2}})"));
        for (const QString& other : {u"A"_s, u"C"_s, u"E"_s, u"b"_s, QString()})
            QVERIFY(!snapshot.find(other));
    }

    // Readers walk through a snapshot and a sorted list of their own at the same time.
    void symbols_of_any_script_come_in_the_order_of_texts()
    {
        const QStringList names{u"a"_s, u"Z"_s, u"EURUSD"_s, u"EURUSD.m"_s, u"é"_s, u"Ω"_s, u"\uffee"_s,
            u"\U0001d11e"_s, u"日経"_s, u"_"_s, u"É"_s};
        QJsonObject made;
        QByteArray text;
        for (const QString& name : names) {
            made.insert(name, QJsonObject{{u"bid"_s, 1.0}});
            text += (text.isEmpty() ? "{\"" : ",\"") + name.toUtf8() + "\":{\"bid\":1}";
        }
        for (const QJsonObject& prices : {made, parse(text + '}')}) {
            const PriceSnapshot snapshot(prices);
            QCOMPARE(snapshot.entries().size(), static_cast<std::size_t>(names.size()));
            QVERIFY(std::is_sorted(snapshot.entries().begin(), snapshot.entries().end(),
                [](const auto& a, const auto& b) { return a.symbol < b.symbol; }));
            for (const QString& name : names)
                QVERIFY2(snapshot.find(name), qPrintable(name));
        }
    }

    void an_empty_map_has_no_entries()
    {
        const PriceSnapshot snapshot{QJsonObject()};
        QVERIFY(snapshot.entries().empty());
        QVERIFY(!snapshot.find(u"A"_s));
    }

    void each_symbols_own_decimals_say_what_is_a_price()
    {
        const QJsonObject prices = parse(R"({"A":{"bid":1e-8,"ask":1e-8},"B":{"bid":1e-8,"ask":"0.00002"},
        "C":{"bid":0.4,"ask":1e12},"D":{"bid":1e-300,"ask":1.5}})");
        const PriceSnapshot snapshot(prices, [](const QString& symbol) {
            return symbol == "A"_L1 ? 8 : symbol == "C"_L1 ? 0 : 5;
        });
        QVERIFY((*snapshot.find(u"A"_s) == Quote{1e-8, 1e-8}));
        QVERIFY((*snapshot.find(u"B"_s) == Quote{0.0, 0.00002}));
        QVERIFY((*snapshot.find(u"C"_s) == Quote{0.0, 0.0}));
        QVERIFY((*snapshot.find(u"D"_s) == Quote{0.0, 1.5}));
        const PriceSnapshot usual(prices);
        for (const PriceSnapshot::Entry& entry : usual.entries())
            QVERIFY(entry.quote == readQuote(prices.value(entry.symbol), 5));
    }

    void nobody_is_asked_for_decimals_that_do_not_matter()
    {
        QStringList asked;
        const PriceSnapshot snapshot(
            parse(R"({"A":{"bid":0.5,"ask":0.6},"B":{"bid":-37.5,"ask":-37},"C":{"bid":0.3,"ask":0.6}})"),
            [&](const QString& symbol) {
                asked.append(symbol);
                return 5;
            });
        QCOMPARE(asked, QStringList(u"C"_s));
        QVERIFY((*snapshot.find(u"C"_s) == Quote{0.3, 0.6}));
    }
};

TAVORAN_TEST(TestPriceSnapshot)
#include "tst_PriceSnapshot.moc"
