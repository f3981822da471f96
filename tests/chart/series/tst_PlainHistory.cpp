#include "chart/series/PlainHistory.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace {

const QByteArray usual
    = R"([{"timestamp":"2014-05-01T00:00:00.000Z","open":1.38686,"high":1.3888,)"
      R"("low":1.38e0,"close":"1.38701","volume":412},)"
      "\n "
      R"({ "timestamp" : "2014-05-01T00:15:00Z", "open":-0.5, "high":2, "low":-1, "close":1, "volume":1e3 } ])";

/// By a clock that shows 17:46:40 on 17 March 2030.
constexpr CandleRule rule{5, 1'900'000'000'000};

/// Whether both readers say the same about a text, in so far as the fast one says anything.
bool agree(const QByteArray& json)
{
    const std::optional<HistoryReply> plain = readPlainHistory(json, rule);
    if (!plain)
        return true;
    const QJsonDocument document = QJsonDocument::fromJson(json);
    const HistoryReply general = HistoryReply::read(document, rule);
    return document.isArray() && general.received == plain->received && general.candles == plain->candles;
}

} // namespace

class tst_PlainHistory final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theUsualFormIsRead()
    {
        const std::optional<HistoryReply> history = readPlainHistory(usual, rule);
        QVERIFY(history);
        QCOMPARE(history->received, 2);
        QCOMPARE(history->candles.size(), std::size_t(2));
        QVERIFY((history->candles[0] == Candle{1'398'902'400'000, 1.38686, 1.3888, 1.38, 1.38701, 412}));
        QVERIFY((history->candles[1] == Candle{1'398'903'300'000, -0.5, 2.0, -1.0, 1.0, 1000}));
    }

    void whatItReadsIsWhatTheGeneralParserReads_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("usual") << usual;
        QTest::newRow("no candle") << "[]"_ba;
        QTest::newRow("no field") << "[{}]"_ba;
        QTest::newRow("time is a number") << R"([{"timestamp":1398902400000,"open":1}])"_ba;
        QTest::newRow("time without zone")
            << R"([{"timestamp":"2014-05-01T00:00:00","open":1,"high":9,"low":1,"close":2}])"_ba;
        QTest::newRow("no time") << R"([{"timestamp":"yesterday","open":1}])"_ba;
        QTest::newRow("field twice")
            << R"([{"timestamp":"2014-05-01T00:00:00Z","open":1,"open":2,"high":9,"low":1,"close":2}])"_ba;
        QTest::newRow("unknown field")
            << R"([{"timestamp":"2014-05-01T00:00:00Z","weight":3,"open":1,"high":9,"low":1,"close":2}])"_ba;
        QTest::newRow("volume too large")
            << R"([{"timestamp":"2014-05-01T00:00:00Z","volume":1e14,"open":1,"high":9,"low":1,"close":2}])"_ba;
        QTest::newRow("volume with a fraction")
            << R"([{"timestamp":"2014-05-01T00:00:00Z","volume":12.9,"open":1,"high":9,"low":1,"close":2}])"_ba;
        QTest::newRow("volume below zero")
            << R"([{"timestamp":"2014-05-01T00:00:00Z","volume":-3,"open":1,"high":9,"low":1,"close":2}])"_ba;
        QTest::newRow("a price is missing")
            << R"([{"timestamp":"2014-05-01T00:00:00Z","open":1,"high":9,"low":1}])"_ba;
        const auto low = [](const char* value) {
            return R"([{"timestamp":"2014-05-01T00:00:00Z","open":1,"high":9,"close":2,"low":)"_ba + value
                + "}]";
        };
        for (const char* number : {"1.25e-7", "0.000005", "0.0000049", "-0.000005", "0", "-0", "1e-300",
                 "999999999999", "1e12", "\"1e12\"", "\"1e-9\"", "-1e12"})
            QTest::newRow(number) << low(number);
        for (const char* year : {"2014", "2030", "2031", "9999"}) {
            QByteArray json = R"([{"timestamp":"YEAR-03-18T17:46:40Z","open":1,"high":9,"low":1,"close":2}])";
            QTest::newRow(year) << json.replace("YEAR", year);
        }
    }
    void whatItReadsIsWhatTheGeneralParserReads()
    {
        QFETCH(const QByteArray, json);
        QVERIFY(readPlainHistory(json, rule));
        QVERIFY(agree(json));
    }

    void anythingElseIsLeftToTheGeneralParser_data()
    {
        QTest::addColumn<QByteArray>("json");
        const auto price = [](const char* value) {
            return R"([{"timestamp":"2014-05-01T00:00:00Z","open":)"_ba + value + "}]";
        };
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("object") << "{}"_ba;
        QTest::newRow("cut off") << usual.chopped(1);
        QTest::newRow("more behind it") << usual + "x";
        QTest::newRow("second array") << usual + usual;
        QTest::newRow("comma at the end") << "[{},]"_ba;
        QTest::newRow("comma in the object") << R"([{"open":1,}])"_ba;
        QTest::newRow("element is a number") << "[1]"_ba;
        QTest::newRow("nested") << price("[1]");
        QTest::newRow("null") << price("null");
        QTest::newRow("escape") << price(R"("\u0031")");
        QTest::newRow("not ASCII") << price("\"\xc3\xa4\"");
        QTest::newRow("text is no number") << price("\"1.5x\"");
        QTest::newRow("empty text") << price("\"\"");
        QTest::newRow("leading zero") << price("01");
        QTest::newRow("plus sign") << price("+1");
        QTest::newRow("no digit before the point") << price(".5");
        QTest::newRow("no digit behind the point") << price("1.");
        QTest::newRow("no exponent") << price("1e");
        QTest::newRow("infinite") << price("1e999");
        QTest::newRow("too small") << price("1e-999");
        QTest::newRow("absurd") << price("1e16");
        QTest::newRow("not a number") << price("\"nan\"");
    }
    void anythingElseIsLeftToTheGeneralParser()
    {
        QFETCH(const QByteArray, json);
        QVERIFY(!readPlainHistory(json, rule));
    }

    void aDamagedByteNeverMakesAnotherHistory()
    {
        for (qsizetype at = 0; at < usual.size(); ++at) {
            for (int byte = 0; byte < 256; ++byte) {
                QByteArray damaged = usual;
                damaged[at] = static_cast<char>(byte);
                QVERIFY2(agree(damaged), damaged.toPercentEncoding(" {}[]:,\"").constData());
            }
        }
    }

    void aCutTextIsNoHistory()
    {
        for (qsizetype length = 0; length < usual.size(); ++length)
            QVERIFY(!readPlainHistory(usual.first(length), rule));
    }

    void theReplyIsReadEitherWay()
    {
        const QByteArray escaped
            = R"([{"\u0074imestamp":"2014-05-01T00:00:00Z","open":1,"high":9,"low":1,"close":2}])"_ba;
        QVERIFY(!readPlainHistory(escaped, rule));
        QCOMPARE(HistoryReply::read(escaped, rule).candles.size(), std::size_t(1));
        QCOMPARE(HistoryReply::read(usual, rule).candles.size(), std::size_t(2));
        QVERIFY(HistoryReply::read("{}"_ba, rule).candles.empty());
        QVERIFY(HistoryReply::read(usual.chopped(1), rule).candles.empty());
    }
};

TAVORAN_TEST(tst_PlainHistory)
#include "tst_PlainHistory.moc"
