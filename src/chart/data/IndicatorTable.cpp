#include "chart/data/IndicatorTable.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

/// The mean of the last `period` closes.
void extendSma(
    IndicatorProgress& progress, qsizetype period, std::span<const Candle> candles, std::span<double> values)
{
    const auto length = static_cast<double>(period);
    const auto count = static_cast<qsizetype>(candles.size());
    const Candle* candle = candles.data();
    double* value = values.data();
    double sum = progress.first;
    qsizetype i = progress.bars;
    for (; i < std::min(period, count); ++i) {
        sum += candle[i].close;
        value[i] = i == period - 1 ? sum / length : none;
    }
    for (; i < count; ++i) {
        sum += candle[i].close;
        sum -= candle[i - period].close;
        value[i] = sum / length;
    }
    progress = {i, sum, 0.0};
}

/// Begins with the mean of the first `period` closes.
void extendEma(
    IndicatorProgress& progress, qsizetype period, std::span<const Candle> candles, std::span<double> values)
{
    const auto length = static_cast<double>(period);
    const auto count = static_cast<qsizetype>(candles.size());
    const Candle* candle = candles.data();
    double* value = values.data();
    const double share = 2.0 / (length + 1.0);
    const double rest = 1.0 - share;
    double average = progress.first; // a sum until there are enough closes for a mean
    qsizetype i = progress.bars;
    for (; i < std::min(period, count); ++i) {
        average += candle[i].close;
        if (i == period - 1)
            average /= length;
        value[i] = i == period - 1 ? average : none;
    }
    for (; i < count; ++i) {
        average = share * candle[i].close + rest * average;
        value[i] = average;
    }
    progress = {i, average, 0.0};
}

double rsi(double averageGain, double averageLoss)
{
    return averageLoss == 0.0 ? 100.0 : 100.0 - 100.0 / (averageGain / averageLoss + 1.0);
}

/// After Wilder: gains and losses begin as means and fade from then on.
void extendRsi(
    IndicatorProgress& progress, qsizetype period, std::span<const Candle> candles, std::span<double> values)
{
    const auto length = static_cast<double>(period);
    const auto count = static_cast<qsizetype>(candles.size());
    const Candle* candle = candles.data();
    double* value = values.data();
    double gains = progress.first;
    double losses = progress.second;
    qsizetype i = progress.bars;
    if (i == 0 && count > 0)
        value[i++] = none; // nothing to compare with
    for (; i < std::min(period + 1, count); ++i) {
        const double change = candle[i].close - candle[i - 1].close;
        if (change >= 0.0)
            gains += change;
        else
            losses -= change;
        value[i] = none;
        if (i == period) {
            gains /= length;
            losses /= length;
            value[i] = rsi(gains, losses);
        }
    }
    for (; i < count; ++i) {
        const double change = candle[i].close - candle[i - 1].close;
        gains = (gains * (length - 1.0) + std::max(change, 0.0)) / length;
        losses = (losses * (length - 1.0) + std::max(-change, 0.0)) / length;
        value[i] = rsi(gains, losses);
    }
    progress = {i, gains, losses};
}

constexpr std::array rsiBounds{30, 70};

constexpr std::array table{
    IndicatorRow{
        .kind = IndicatorKind::Sma,
        .key = "sma"_L1,
        .name = QT_TRANSLATE_NOOP("Indicators", "Moving Average"),
        .command = QT_TRANSLATE_NOOP("Indicators", "Moving Average (SMA)"),
        .label = "SMA"_L1,
        .icon = "m P 2.5 10.5 2.5 14.5 P 5.5 8.5 5.5 13.5 P 8.5 10.5 8.5 14.5 "
                "b P 1.5 7.5 5.5 4.5 9.5 5.5 14.5 1.5 "
                "m P 14.5 9.5 11.5 9.5 11.5 11.5 14.5 11.5 14.5 14.5 11.5 14.5"_L1,
        .usualPeriod = 20,
        .barsBefore = 0,
        .formula = &extendSma,
        .pane = {},
    },
    IndicatorRow{
        .kind = IndicatorKind::Ema,
        .key = "ema"_L1,
        .name = QT_TRANSLATE_NOOP("Indicators", "Exponential MA"),
        .command = QT_TRANSLATE_NOOP("Indicators", "Moving Average (EMA)"),
        .label = "EMA"_L1,
        .icon = "m P 2.5 10.5 2.5 14.5 P 5.5 8.5 5.5 13.5 P 8.5 10.5 8.5 14.5 "
                "y P 1.5 7.5 5.5 4.5 9.5 5.5 14.5 1.5 "
                "m P 14.5 9.5 11.5 9.5 11.5 14.5 14.5 14.5 P 11.5 11.5 14.5 11.5"_L1,
        .usualPeriod = 20,
        .barsBefore = 0,
        .formula = &extendEma,
        .pane = {},
    },
    IndicatorRow{
        .kind = IndicatorKind::Rsi,
        .key = "rsi"_L1,
        .name = QT_TRANSLATE_NOOP("Indicators", "Relative Strength Index"),
        .command = QT_TRANSLATE_NOOP("Indicators", "Relative Strength Index"),
        .label = "RSI"_L1,
        .icon = "m P 1 4.5 15 4.5 P 1 11.5 15 11.5 b P 1.5 9.5 4.5 2.5 8.5 13.5 11.5 6.5 14.5 8.5"_L1,
        .usualPeriod = 14,
        .barsBefore = 1,
        .formula = &extendRsi,
        .pane = PaneStyle{QColor(0xc7, 0x92, 0xea), rsiBounds, ValueRange{0.0, 100.0}},
    },
};

constexpr bool rowsStandInTheOrderOfTheirKinds()
{
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (static_cast<std::size_t>(table[i].kind) != i)
            return false;
    }
    return true;
}
static_assert(rowsStandInTheOrderOfTheirKinds(), "a kind is the number of its row");

} // namespace

std::span<const IndicatorRow> indicatorTable()
{
    return table;
}

const IndicatorRow& indicatorRow(IndicatorKind kind)
{
    return table[static_cast<std::size_t>(kind)];
}

const IndicatorRow* findIndicator(QStringView key)
{
    const auto* const row = std::find_if(
        table.begin(), table.end(), [key](const IndicatorRow& each) { return each.key == key; });
    return row != table.end() ? row : nullptr;
}

QString indicatorText(const char* text)
{
    return QCoreApplication::translate("Indicators", text);
}

QString indicatorLabel(IndicatorKind kind, qint32 period)
{
    return QCoreApplication::translate("Indicators", "%1(%2)", "indicator: name and period")
        .arg(indicatorRow(kind).label, QString::number(period));
}
