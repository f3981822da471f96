#include "chart/data/IndicatorTable.h"

#include "chart/data/IndicatorPane.h"
#include "chart/data/Indicators.h"
#include "support/TestMain.h"

#include <QSet>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

/// A row as it is published, and its values over two bars.
struct Published {
    IndicatorKind kind;
    QString key;
    QString name;
    QString command;
    QString label; ///< over the usual period
    bool pane;
    QList<double> values; ///< over two bars, of the candles of handMade()
};

const QList<Published>& published()
{
    static const QList<Published> rows{
        {IndicatorKind::Sma, u"sma"_s, u"Moving Average"_s, u"Moving Average (SMA)"_s, u"SMA(20)"_s, false,
            {none, 3.0, 4.0, 5.5, 7.0}},
        {IndicatorKind::Ema, u"ema"_s, u"Exponential MA"_s, u"Moving Average (EMA)"_s, u"EMA(20)"_s, false,
            {none, 3.0, 5.0, 5.0, 23.0 / 3.0}},
        {IndicatorKind::Rsi, u"rsi"_s, u"Relative Strength Index"_s, u"Relative Strength Index"_s,
            u"RSI(14)"_s, true, {none, none, 200.0 / 3.0, 50.0, 250.0 / 3.0}},
    };
    return rows;
}

/// No two figures of a candle are alike, so that a formula that takes the wrong one is found.
std::vector<Candle> handMade()
{
    return {{0, 3.0, 5.0, 2.0, 4.0, 10}, {1, 4.0, 4.5, 1.0, 2.0, 20}, {2, 2.0, 7.0, 1.5, 6.0, 30},
        {3, 6.0, 8.0, 4.0, 5.0, 40}, {4, 5.0, 10.0, 4.5, 9.0, 50}};
}

} // namespace

class TestIndicatorTable final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void each_row_is_as_published()
    {
        QCOMPARE(indicatorTable().size(), static_cast<std::size_t>(published().size()));
        for (const Published& expected : published()) {
            const IndicatorRow& row = indicatorRow(expected.kind);
            QCOMPARE(row.kind, expected.kind);
            QCOMPARE(QString(row.key), expected.key);
            QCOMPARE(indicatorText(row.name), expected.name);
            QCOMPARE(indicatorText(row.command), expected.command);
            QCOMPARE(indicatorLabel(row.kind, row.usualPeriod), expected.label);
            QCOMPARE(row.pane.has_value(), expected.pane);
            QCOMPARE(findIndicator(expected.key), &row);
        }
    }

    void each_formula_gives_the_values_worked_out_by_hand()
    {
        const std::vector<Candle> candles = handMade();
        for (const Published& expected : published()) {
            const std::vector<double> values = indicators::movingAverage(candles, {expected.kind, 2, {}});
            QCOMPARE(values.size(), candles.size());
            for (qsizetype i = 0; i < expected.values.size(); ++i) {
                const double value = values[static_cast<std::size_t>(i)];
                const QByteArray where = expected.key.toLatin1() + " of bar " + QByteArray::number(i);
                if (std::isnan(expected.values.at(i)))
                    QVERIFY2(std::isnan(value), where.constData());
                else
                    QVERIFY2(std::abs(value - expected.values.at(i)) < 1e-12, where.constData());
            }
        }
    }

    void the_first_value_has_the_bars_that_the_row_says()
    {
        std::vector<Candle> candles;
        for (int i = 0; i < 40; ++i)
            candles.push_back({i, 1.0, 1.0, 1.0, 1.0 + i % 7, 1});
        for (const IndicatorRow& row : indicatorTable()) {
            for (const int period : {1, 2, 9, 30}) {
                const std::vector<double> values = indicators::movingAverage(candles, {row.kind, period, {}});
                const auto first = static_cast<std::size_t>(period + row.barsBefore - 1);
                for (std::size_t i = 0; i < values.size(); ++i)
                    QCOMPARE(std::isnan(values[i]), i < first);
            }
        }
    }

    void keys_are_told_apart_in_a_saved_chart()
    {
        // What else a saved chart holds, beside the panes' own.
        QSet<QString> taken{
            u"mas"_s, u"chartType"_s, u"chartShift"_s, u"autoScroll"_s, u"colors"_s, u"type"_s, u"period"_s};
        for (const IndicatorRow& row : indicatorTable()) {
            for (const QString& key : {QString(row.key), row.key + u"Period"_s}) {
                QVERIFY2(!taken.contains(key), qPrintable(key));
                taken.insert(key);
            }
        }
        QVERIFY(!findIndicator(u"mas"_s));
        QVERIFY(!findIndicator(u"SMA"_s));
        QVERIFY(!findIndicator({}));
    }

    void panes_are_hidden_over_their_usual_period_at_first()
    {
        qsizetype panes = 0;
        for (const IndicatorRow& row : indicatorTable()) {
            if (!row.pane)
                continue;
            QCOMPARE(hiddenPanes().at(panes), (IndicatorPane{row.kind, row.usualPeriod, false}));
            ++panes;
        }
        QCOMPARE(hiddenPanes().size(), panes);
    }
};

TAVORAN_TEST(TestIndicatorTable)
#include "tst_IndicatorTable.moc"
