#include "chart/data/Indicators.h"

#include "support/TestMain.h"

#include <QDir>
#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

constexpr IndicatorKind simple = IndicatorKind::Sma;
constexpr IndicatorKind exponential = IndicatorKind::Ema;

std::vector<Candle> barsWith(const std::vector<double>& closes)
{
    std::vector<Candle> candles;
    candles.reserve(closes.size());
    for (const double close : closes)
        candles.push_back({static_cast<qint64>(candles.size()) * 60'000, 0.0, 9.0, -9.0, close, 1});
    return candles;
}

std::vector<double> average(const std::vector<double>& closes, IndicatorKind kind, qint32 period)
{
    return indicators::movingAverage(barsWith(closes), {kind, period, QColor()});
}

std::vector<double> rsi(const std::vector<double>& closes, int period)
{
    return indicators::rsi(barsWith(closes), period);
}

bool isAllNaN(const std::vector<double>& values)
{
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isnan(value); });
}

std::vector<double> rising(int count)
{
    std::vector<double> closes(static_cast<std::size_t>(count));
    std::iota(closes.begin(), closes.end(), 1.0);
    return closes;
}

std::vector<double> walk(quint32 seed, std::size_t count, double start, double step)
{
    QRandomGenerator random(seed);
    std::vector<double> closes;
    for (double price = start; closes.size() < count;) {
        closes.push_back(price);
        // One bar in eight does not move.
        if (random.bounded(8) > 0)
            price += (random.bounded(2.0) - 1.0) * step + (start - price) * 0.001;
    }
    return closes;
}

/// Each average summed from its own bars, in higher precision.
std::vector<long double> simpleByHand(const std::vector<double>& closes, std::size_t period)
{
    std::vector<long double> values(closes.size(), std::numeric_limits<long double>::quiet_NaN());
    for (std::size_t end = period; end <= closes.size(); ++end) {
        const auto last = closes.begin() + static_cast<std::ptrdiff_t>(end);
        values[end - 1] = std::accumulate(last - static_cast<std::ptrdiff_t>(period), last, 0.0L)
            / static_cast<long double>(period);
    }
    return values;
}

/// As the sum of all closes weighed by how long ago they were, which is cut where weights vanish.
std::vector<long double> exponentialByHand(const std::vector<double>& closes, std::size_t period)
{
    std::vector<long double> values = simpleByHand(closes, period);
    const long double fade
        = static_cast<long double>(period - 1) / static_cast<long double>(period + 1); // 1 - 2 / (p + 1)
    for (std::size_t i = closes.size(); i-- > period;) {
        long double sum = 0.0L;
        long double weight = 1.0L - fade;
        std::size_t from = i;
        for (; from >= period && weight > 1e-20L; --from, weight *= fade)
            sum += weight * static_cast<long double>(closes[from]);
        if (from < period) // the seed stands for all that came before
            sum += values[period - 1] * std::pow(fade, static_cast<long double>(i - period + 1));
        values[i] = sum;
    }
    return values;
}

/// As the share of gains in all moves, both weighed by how long ago they were.
std::vector<long double> rsiByHand(const std::vector<double>& closes, std::size_t period)
{
    std::vector<long double> values(closes.size(), std::numeric_limits<long double>::quiet_NaN());
    if (closes.size() <= period)
        return values;
    const auto move = [&closes](std::size_t i) {
        return static_cast<long double>(closes[i]) - static_cast<long double>(closes[i - 1]);
    };
    const long double share = 1.0L / static_cast<long double>(period);
    long double up = 0.0L;
    long double all = 0.0L;
    for (std::size_t i = 1; i < closes.size(); ++i) {
        // The first averages are plain means, later ones fade.
        const long double keep = i <= period ? 1.0L : 1.0L - share;
        up = keep * up + share * std::max(move(i), 0.0L);
        all = keep * all + share * std::abs(move(i));
        if (i >= period)
            values[i] = up == all ? 100.0L : 100.0L * up / all;
    }
    return values;
}

/// Empty when all values agree, else what does not.
QString difference(const std::vector<double>& values, const std::vector<long double>& expected)
{
    if (values.size() != expected.size())
        return u"%1 values instead of %2"_s.arg(values.size()).arg(expected.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto value = static_cast<long double>(values[i]);
        const bool same = std::isnan(expected[i])
            ? std::isnan(value)
            : std::abs(value - expected[i]) <= 1e-9L * std::abs(expected[i]);
        if (!same)
            return u"value %1 is %2 instead of %3"_s.arg(i)
                .arg(values[i], 0, 'g', 17)
                .arg(static_cast<double>(expected[i]), 0, 'g', 17);
    }
    return {};
}

void compareWithOtherComputations(const std::vector<double>& closes)
{
    for (const qint32 period : {1, 2, 3, 14, 21, 50, 200, 400}) {
        const auto length = static_cast<std::size_t>(period);
        const QString simpleFault = difference(average(closes, simple, period), simpleByHand(closes, length));
        QVERIFY2(simpleFault.isEmpty(), qPrintable(u"SMA(%1): "_s.arg(period) + simpleFault));
        const QString exponentialFault
            = difference(average(closes, exponential, period), exponentialByHand(closes, length));
        QVERIFY2(exponentialFault.isEmpty(), qPrintable(u"EMA(%1): "_s.arg(period) + exponentialFault));
        const QString rsiFault = difference(rsi(closes, period), rsiByHand(closes, length));
        QVERIFY2(rsiFault.isEmpty(), qPrintable(u"RSI(%1): "_s.arg(period) + rsiFault));
    }
}

/// The closes of a CSV file with a header line and the close in the fifth column.
std::vector<double> recordedCloses(const QString& path)
{
    QFile file(path);
    std::vector<double> closes;
    if (!file.open(QIODevice::ReadOnly))
        return closes;
    file.readLine();
    while (!file.atEnd()) {
        const QList<QByteArray> columns = file.readLine().trimmed().split(',');
        if (columns.size() > 4)
            closes.push_back(columns.at(4).toDouble());
    }
    return closes;
}

} // namespace

class TestIndicators final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_simple_average_begins_at_its_period()
    {
        const std::vector<double> values = average({1, 2, 3, 4}, simple, 3);
        QCOMPARE(values.size(), std::size_t{4});
        QVERIFY(std::isnan(values[0]));
        QVERIFY(std::isnan(values[1]));
        QCOMPARE(values[2], 2.0);
        QCOMPARE(values[3], 3.0);
    }

    void an_exponential_average_begins_with_the_mean()
    {
        const std::vector<double> values = average({1, 2, 3, 4}, exponential, 3);
        QCOMPARE(values.size(), std::size_t{4});
        QVERIFY(std::isnan(values[0]));
        QVERIFY(std::isnan(values[1]));
        QCOMPARE(values[2], 2.0);
        QCOMPARE(values[3], 3.0);
        QCOMPARE(average({1, 2, 6, 4}, exponential, 3).back(), 3.5);
    }

    void periods_below_one_count_as_one_data()
    {
        QTest::addColumn<int>("period");
        for (const int period : {1, 0, -1, std::numeric_limits<int>::min()})
            QTest::addRow("%d", period) << period;
    }
    void periods_below_one_count_as_one()
    {
        QFETCH(int, period);
        const std::vector<double> closes{1, 5, 2, 8};
        QCOMPARE(average(closes, simple, period), closes);
        QCOMPARE(average(closes, exponential, period), closes);
        const std::vector<double> values = rsi(closes, period);
        QVERIFY(std::isnan(values[0]));
        QCOMPARE(values[1], 100.0);
        QCOMPARE(values[2], 0.0);
        QCOMPARE(values[3], 100.0);
    }

    void a_series_shorter_than_the_period_has_no_average()
    {
        for (const IndicatorKind kind : {simple, exponential}) {
            const std::vector<double> values = average(rising(19), kind, 20);
            QCOMPARE(values.size(), std::size_t{19});
            QVERIFY(isAllNaN(values));
        }
    }

    void a_period_as_long_as_the_series_has_one_average()
    {
        for (const IndicatorKind kind : {simple, exponential}) {
            std::vector<double> values = average(rising(20), kind, 20);
            QCOMPARE(values.back(), 10.5);
            values.pop_back();
            QVERIFY(isAllNaN(values));
        }
    }

    void an_empty_series_has_no_values()
    {
        QVERIFY(average({}, simple, 1).empty());
        QVERIFY(average({}, exponential, 20).empty());
        QVERIFY(rsi({}, 14).empty());
    }

    void absurd_periods_have_no_values()
    {
        for (const int period : {1'000'000'000, std::numeric_limits<int>::max()}) {
            QVERIFY(isAllNaN(average(rising(100), simple, period)));
            QVERIFY(isAllNaN(average(rising(100), exponential, period)));
            QVERIFY(isAllNaN(rsi(rising(100), period)));
        }
    }

    void rsi_needs_one_bar_more_than_its_period()
    {
        QVERIFY(isAllNaN(rsi(rising(14), 14)));
        std::vector<double> values = rsi(rising(15), 14);
        QVERIFY(!std::isnan(values.back()));
        values.pop_back();
        QVERIFY(isAllNaN(values));
    }

    void rsi_of_rising_closes_is_100()
    {
        QCOMPARE(rsi(rising(15), 14)[14], 100.0);
        QCOMPARE(rsi(rising(40), 14).back(), 100.0);
    }

    void rsi_of_falling_closes_is_0()
    {
        std::vector<double> closes = rising(40);
        std::reverse(closes.begin(), closes.end());
        QCOMPARE(rsi(closes, 14)[14], 0.0);
        QCOMPARE(rsi(closes, 14).back(), 0.0);
    }

    void rsi_of_closes_that_stand_still_is_100()
    {
        // A close that does not move is a gain of nothing, and there is no loss.
        QCOMPARE(rsi({5, 5, 5, 5}, 2).back(), 100.0);
    }

    void rsi_weighs_as_wilder_does()
    {
        // Moves +2, -1: average gain 1, loss 0.5. Then +3: gain (1 + 3) / 2, loss 0.5 / 2.
        const std::vector<double> values = rsi({10, 12, 11, 14}, 2);
        QCOMPARE(values[2], 100.0 - 100.0 / (1.0 / 0.5 + 1.0));
        QCOMPARE(values[3], 100.0 - 100.0 / (2.0 / 0.25 + 1.0));
    }

    void only_closes_count()
    {
        std::vector<Candle> candles = barsWith({1, 2, 3, 5, 4});
        const std::vector<double> before = indicators::movingAverage(candles, {simple, 1, QColor()});
        const std::vector<double> rsiBefore = indicators::rsi(candles, 1);
        for (Candle& candle : candles)
            candle = {candle.time, 77.0, 99.0, -99.0, candle.close, 12345};
        QCOMPARE(indicators::movingAverage(candles, {simple, 1, QColor()}), before);
        QCOMPARE(indicators::rsi(candles, 1).back(), rsiBefore.back());
    }

    void random_walks_agree_with_another_computation_data()
    {
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("step");
        QTest::newRow("currency") << 1.1 << 0.0004;
        QTest::newRow("index") << 11'313.5 << 9.0;
        QTest::newRow("coin") << 60'000.0 << 250.0;
        QTest::newRow("penny") << 0.00004 << 0.000001;
    }
    void random_walks_agree_with_another_computation()
    {
        QFETCH(double, start);
        QFETCH(double, step);
        for (const quint32 seed : {1U, 2U, 3U})
            compareWithOtherComputations(walk(seed, 3'000, start, step));
    }

    void recorded_history_agrees_with_another_computation()
    {
        const QString folder = qEnvironmentVariable("TAVORAN_HISTORY_DIR");
        if (folder.isEmpty())
            QSKIP("TAVORAN_HISTORY_DIR is not set");
        const QFileInfoList files = QDir(folder).entryInfoList({u"*.csv"_s}, QDir::Files);
        QVERIFY(!files.isEmpty());
        for (const QFileInfo& file : files) {
            const std::vector<double> closes = recordedCloses(file.filePath());
            QVERIFY2(closes.size() > 500, qPrintable(file.filePath()));
            compareWithOtherComputations(closes);
            if (QTest::currentTestFailed())
                return qWarning("in %s", qPrintable(file.fileName()));
        }
    }
};

TAVORAN_TEST(TestIndicators)
#include "tst_Indicators.moc"
