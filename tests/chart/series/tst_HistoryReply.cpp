#include "app/base/UtcTime.h"
#include "chart/series/CandleSeries.h"
#include "chart/series/HistoryReply.h"
#include "chart/series/PlainHistory.h"
#include "support/TestMain.h"
#include "support/TimeZone.h"

#include <QJsonArray>
#include <QJsonObject>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

QJsonObject row(const QString& time, const QJsonValue& close = 1.5)
{
    return {{u"timestamp"_s, time}, {u"open"_s, 1.0}, {u"high"_s, 2.0}, {u"low"_s, 0.5}, {u"close"_s, close},
        {u"volume"_s, 7}};
}

constexpr qint64 msPerDay = 86'400'000;
constexpr qint64 now = 1'800'000'000'000;
constexpr CandleRule rule{5, now};

HistoryReply readRows(const QJsonArray& rows)
{
    return HistoryReply::read(QJsonDocument(rows), rule);
}

/// What either reader makes of the same rows.
QList<HistoryReply> readBothWays(const QJsonArray& rows, const CandleRule& by)
{
    const QJsonDocument document(rows);
    const QByteArray text = document.toJson();
    return {HistoryReply::read(document, by), HistoryReply::read(text, by),
        readPlainHistory(text, by).value_or(HistoryReply())};
}

} // namespace

class tst_HistoryReply final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useForeignTimeZone(); }

    void readsTimesLikeQtDoes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("expected");
        QTest::newRow("milliseconds") << u"2014-05-01T00:00:00.250Z"_s << Q_INT64_C(1398902400250);
        QTest::newRow("whole seconds") << u"2014-05-01T00:00:01Z"_s << Q_INT64_C(1398902401000);
        QTest::newRow("leap day") << u"2024-02-29T12:30:00.000Z"_s << Q_INT64_C(1709209800000);
        QTest::newRow("zone") << u"2014-05-01T02:00:00.000+02:00"_s << Q_INT64_C(1398902400000);
        QTest::newRow("no zone means UTC") << u"2014-05-01T00:00:00.000"_s << Q_INT64_C(1398902400000);
        QTest::newRow("a date alone") << u"2014-05-01"_s << Q_INT64_C(1398902400000);
    }
    void readsTimesLikeQtDoes()
    {
        QFETCH(QString, text);
        QFETCH(qint64, expected);
        QCOMPARE(isoTimeMs(text), expected);
    }

    void readsEveryDayOfFourCenturiesLikeQt()
    {
        for (QDate day(1970, 1, 2); day.year() < 2370; day = day.addDays(1)) {
            const QDateTime time = utcTime(day, QTime(13, 14, 15, 16));
            const qint64 expected = time.toMSecsSinceEpoch();
            if (isoTimeMs(time.toString(Qt::ISODateWithMs)) != expected)
                QCOMPARE(isoTimeMs(time.toString(Qt::ISODateWithMs)), expected);
        }
    }

    void refusesWhatIsNoTimeAfterTheEpoch_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("words") << u"yesterday at noon-ish"_s;
        QTest::newRow("as long as a time") << u"not-a-time-not-a-tiZ"_s;
        QTest::newRow("thirteenth month") << u"2014-13-01T00:00:00Z"_s;
        QTest::newRow("no leap day") << u"2023-02-29T00:00:00.000Z"_s;
        QTest::newRow("sixty-first second") << u"2014-05-01T00:00:60Z"_s;
        QTest::newRow("five-digit year") << u"12014-05-01T00:00:00Z"_s;
        QTest::newRow("the epoch itself") << u"1970-01-01T00:00:00.000Z"_s;
        QTest::newRow("before the epoch") << u"1944-01-01T00:00:00.000Z"_s;
        QTest::newRow("digits of another script") << u"٢٠١٤-05-01T00:00:00Z"_s;
    }
    void refusesWhatIsNoTimeAfterTheEpoch()
    {
        QFETCH(QString, text);
        QCOMPARE(isoTimeMs(text), 0);
        QVERIFY(readRows({row(text)}).candles.empty());
    }

    void readsNumbersAndNumericStrings()
    {
        const HistoryReply reply = readRows({row(u"2014-05-01T00:00:00.000Z"_s, u"1.38686"_s)});
        QCOMPARE(reply.candles.size(), std::size_t(1));
        const Candle& candle = reply.candles.front();
        QCOMPARE(candle.time, Q_INT64_C(1398902400000));
        QCOMPARE(candle.open, 1.0);
        QCOMPARE(candle.high, 2.0);
        QCOMPARE(candle.low, 0.5);
        QCOMPARE(candle.close, 1.38686);
        QCOMPARE(candle.volume, 7);
    }

    void leavesOutBarsWithAPriceThatCannotBeRead_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QByteArray>("value"); // in place of the number; empty: the field is missing
        for (const QString& key : {u"open"_s, u"high"_s, u"low"_s, u"close"_s}) {
            for (const char* value : {"", "null", "true", "{}", "\"1.2x\"", "\"\"", "\"nan\"", "1e300"})
                QTest::addRow("%s %s", qPrintable(key), value) << key << QByteArray(value);
        }
    }
    void leavesOutBarsWithAPriceThatCannotBeRead()
    {
        // As 0 it would stretch the scale of the whole chart.
        QFETCH(QString, key);
        QFETCH(QByteArray, value);
        QByteArray bad = R"({"timestamp":"2014-05-01T00:00:00Z")";
        for (const QString& each : {u"open"_s, u"high"_s, u"low"_s, u"close"_s}) {
            const QByteArray number = each == key ? value : "1.5";
            if (!number.isEmpty())
                bad += ",\"" + each.toLatin1() + "\":" + number;
        }
        const QByteArray good
            = R"({"timestamp":"2014-05-01T00:15:00Z","open":1,"high":2,"low":"0.5","close":1.5,"volume":1})";
        const HistoryReply reply = HistoryReply::read("[" + bad + "}," + good + "]", rule);
        QCOMPARE(reply.received, 2);
        QCOMPARE(reply.candles.size(), std::size_t(1));
        QCOMPARE(reply.candles.front().low, 0.5);
    }

    void leavesOutBarsWithWhatIsNoPriceOfTheSymbol_data()
    {
        QTest::addColumn<double>("price");
        QTest::addColumn<int>("digits");
        QTest::addColumn<bool>("kept");
        QTest::newRow("half a point") << 0.000005 << 5 << true;
        QTest::newRow("less") << 0.0000049 << 5 << false;
        QTest::newRow("far less") << 1e-9 << 5 << false;
        QTest::newRow("small, with decimals for it") << 1e-9 << 9 << true;
        QTest::newRow("zero") << 0.0 << 5 << false;
        QTest::newRow("below zero") << -37.5 << 2 << true;
        QTest::newRow("just below a trillion") << 999'999'999'999.0 << 2 << true;
        QTest::newRow("a trillion") << 1e12 << 2 << false;
    }
    void leavesOutBarsWithWhatIsNoPriceOfTheSymbol()
    {
        QFETCH(double, price);
        QFETCH(int, digits);
        QFETCH(bool, kept);
        for (const QString& key : {u"open"_s, u"high"_s, u"low"_s, u"close"_s}) {
            QJsonObject fields = row(u"2014-05-01T00:00:00.000Z"_s);
            fields.insert(key, price);
            for (const HistoryReply& reply : readBothWays({fields}, {digits, now})) {
                QCOMPARE(reply.received, 1);
                QCOMPARE(reply.candles.size(), std::size_t(kept ? 1 : 0));
            }
        }
    }

    void leavesOutBarsMoreThanADayAheadOfTheClock()
    {
        const auto at = [](qint64 ms) { return row(utcTime(ms).toString(Qt::ISODateWithMs)); };
        const QJsonArray rows{at(now), at(now + msPerDay), at(now + msPerDay + 1), at(now + 30 * msPerDay),
            row(u"9999-12-31T23:59:59.999Z"_s)};
        for (const HistoryReply& reply : readBothWays(rows, rule)) {
            QCOMPARE(reply.received, 5);
            QCOMPARE(reply.candles.size(), std::size_t(2));
            QCOMPARE(reply.candles.back().time, now + msPerDay);
        }
    }

    void truncatesTheVolume_data()
    {
        QTest::addColumn<QJsonValue>("volume");
        QTest::addColumn<int>("expected");
        QTest::newRow("fraction") << QJsonValue(12.9) << 12;
        QTest::newRow("string") << QJsonValue(u"7233.47"_s) << 7233;
        QTest::newRow("negative") << QJsonValue(-3) << 0;
        QTest::newRow("more than 32 bits hold") << QJsonValue(1e12) << std::numeric_limits<int>::max();
        QTest::newRow("absurd") << QJsonValue(1e308) << 0;
        QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined) << 0;
    }
    void truncatesTheVolume()
    {
        QFETCH(QJsonValue, volume);
        QFETCH(int, expected);
        QJsonObject fields = row(u"2014-05-01T00:00:00.000Z"_s);
        fields.insert(u"volume"_s, volume);
        QCOMPARE(readRows({fields}).candles.front().volume, expected);
    }

    void unorderedAndDuplicateTimesMakeAnOrderedSeries()
    {
        const HistoryReply reply
            = readRows({row(u"2014-05-03T00:00:00Z"_s, 3.0), row(u"2014-05-01T00:00:00Z"_s, 1.0),
                row(u"2014-05-03T00:00:00.000Z"_s, 3.5), row(u"2014-05-02T00:00:00Z"_s, 2.0)});
        CandleSeries series;
        series.setCandles(reply.candles);
        QCOMPARE(series.count(), 3);
        QCOMPARE(series.candles()[0].close, 1.0);
        QCOMPARE(series.candles()[1].close, 2.0);
        QCOMPARE(series.candles()[2].close, 3.5);
    }

    void readsAsManyRowsAsAReplyMayHold()
    {
        constexpr int count = 150'000; // about what 16 MiB hold
        const QByteArray row
            = R"({"timestamp":"TIME","open":1.1,"high":1.3,"low":1.0,"close":"1.2","volume":7},)";
        QByteArray body = "[";
        const QDateTime first = utcTime(QDate(2014, 5, 1), QTime(0, 0));
        for (int i = 0; i < count; ++i)
            body += QByteArray(row).replace("TIME", first.addSecs(60LL * i).toString(Qt::ISODate).toLatin1());
        body.back() = ']';
        const HistoryReply reply = HistoryReply::read(QJsonDocument::fromJson(body), rule);
        QCOMPARE(reply.received, count);
        CandleSeries series;
        series.setCandles(reply.candles);
        QCOMPARE(series.count(), count);
        QCOMPARE(series.candles().back().time, first.toMSecsSinceEpoch() + 60'000LL * (count - 1));
    }

    void skipsUnreadableElementsOneByOneButCountsThem()
    {
        const HistoryReply reply = readRows({1, u"two"_s, QJsonArray{3}, QJsonValue::Null, QJsonObject(),
            row(u"2014-05-01T00:00:00.000Z"_s), row(u"soon"_s)});
        QCOMPARE(reply.received, 7);
        QCOMPARE(reply.candles.size(), std::size_t(1));
    }

    void keepsTheServersOrder()
    {
        const HistoryReply reply = readRows({row(u"2014-05-02T00:00:00Z"_s), row(u"2014-05-01T00:00:00Z"_s)});
        QCOMPARE(reply.candles.size(), std::size_t(2));
        QVERIFY(reply.candles[0].time > reply.candles[1].time);
    }

    void anythingButAnArrayIsAnEmptyHistory_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("an empty array") << QByteArray("[]");
        QTest::newRow("empty body") << QByteArray();
        QTest::newRow("a page") << QByteArray("<html>maintenance</html>");
        QTest::newRow("an object") << QByteArray("{\"candles\":[]}");
        QTest::newRow("a cut array") << QByteArray("[{\"timestamp\":\"2014-05-01T00:00:00Z\"");
    }
    void anythingButAnArrayIsAnEmptyHistory()
    {
        QFETCH(QByteArray, body);
        for (const HistoryReply& reply :
            {HistoryReply::read(QJsonDocument::fromJson(body), rule), HistoryReply::read(body, rule)}) {
            QCOMPARE(reply.received, 0);
            QVERIFY(reply.candles.empty());
        }
    }
};

TAVORAN_TEST(tst_HistoryReply)
#include "tst_HistoryReply.moc"
