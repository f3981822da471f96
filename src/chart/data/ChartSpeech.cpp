#include "chart/data/ChartSpeech.h"

#include "app/base/NumberFormat.h"
#include "app/base/UtcTime.h"
#include "chart/data/DrawingKind.h"
#include "chart/data/IndicatorTable.h"
#include "net/records/LevelsBody.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QStringList>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr int paneDecimals = 2;

struct Speech {
    Q_DECLARE_TR_FUNCTIONS(ChartSpeech)
};

QString timeText(qint64 time)
{
    return utcTime(time).toString(u"yyyy.MM.dd HH:mm"_s);
}

QString candleText(const Candle& candle, int digits)
{
    return Speech::tr("open %1, high %2, low %3, close %4, volume %5")
        .arg(formatPrice(candle.open, digits), formatPrice(candle.high, digits),
            formatPrice(candle.low, digits), formatPrice(candle.close, digits),
            QString::number(candle.volume));
}

QString indicatorText(const QString& label, std::span<const double> values, std::size_t bar, int decimals)
{
    if (bar >= values.size() || !std::isfinite(values[bar])) {
        //: an indicator without a value
        return Speech::tr("%1 none").arg(label);
    }
    //: an indicator and its value
    return Speech::tr("%1 %2").arg(label, formatPrice(values[bar], decimals));
}

/// The values at a bar: those over the prices, then those of the panes.
QStringList indicatorTexts(const speech::Reading& reading, std::size_t bar)
{
    const auto valuesOf = [](std::span<const std::span<const double>> all, std::size_t number) {
        return number < all.size() ? all[number] : std::span<const double>();
    };
    QStringList texts;
    std::size_t number = 0;
    for (const MovingAverageSpec& average : reading.look.averages)
        texts.append(indicatorText(indicatorLabel(average.kind, average.period),
            valuesOf(reading.averageValues, number++), bar, reading.look.digits));
    number = 0;
    for (const IndicatorPane& pane : reading.look.panes) {
        if (pane.shown)
            texts.append(indicatorText(indicatorLabel(pane.kind, pane.period),
                valuesOf(reading.paneValues, number++), bar, paneDecimals));
    }
    return texts;
}

QString withIndicators(const QString& text, const QStringList& indicators)
{
    return indicators.isEmpty() ? text : text + u", "_s + indicators.join(u", "_s);
}

/// The price at the crosshair and, with the indicators, the candle under it if there is one.
QString crosshairText(const speech::Reading& reading, const CrosshairPlace& place, bool onCandle)
{
    const int digits = reading.look.digits;
    const QString price = formatPrice(place.price, digits);
    if (!onCandle) {
        //: %1 a price, beside the bars
        return Speech::tr("Crosshair at %1").arg(price);
    }
    const auto bar = static_cast<std::size_t>(place.bar);
    const Candle& candle = reading.candles[bar];
    //: %1 a price, %2 the time of a bar, %3 its prices
    const QString text
        = Speech::tr("Crosshair at %1, %2: %3").arg(price, timeText(candle.time), candleText(candle, digits));
    return withIndicators(text, indicatorTexts(reading, bar));
}

QString placeText(const DrawingPoint& point, int digits)
{
    //: a price and a time
    return Speech::tr("%1 at %2").arg(formatPrice(point.price, digits), timeText(point.time));
}

QString betweenText(const QString& text, const Drawing& drawing, int digits)
{
    return text.arg(placeText(drawing.points.at(0), digits), placeText(drawing.points.at(1), digits));
}

} // namespace

QString speech::chartReading(const Reading& reading)
{
    if (reading.candles.empty())
        return Speech::tr("Waiting for data...");
    const int digits = reading.look.digits;
    const auto count = static_cast<qsizetype>(reading.candles.size());
    const bool onCandle = reading.crosshair && reading.crosshair->bar >= 0 && reading.crosshair->bar < count;
    QStringList sentences;
    if (!reading.held.isEmpty()) {
        //: %1 a level of a trade and the price where it is held
        sentences.append(Speech::tr("Moving: %1").arg(reading.held));
    }
    if (reading.crosshair)
        sentences.append(crosshairText(reading, *reading.crosshair, onCandle));
    const Candle& newest = reading.candles.back();
    //: %1 the time of a bar, %2 its prices
    const QString last = Speech::tr("Last bar %1: %2").arg(timeText(newest.time), candleText(newest, digits));
    sentences.append(
        onCandle ? last : withIndicators(last, indicatorTexts(reading, reading.candles.size() - 1)));
    if (reading.quoteStale)
        sentences.append(Speech::tr("Disconnected, last known prices"));
    if (reading.bid > 0.0)
        sentences.append(Speech::tr("Bid %1").arg(formatPrice(reading.bid, digits)));
    if (reading.ask > 0.0)
        sentences.append(Speech::tr("Ask %1").arg(formatPrice(reading.ask, digits)));
    return sentences.join(u". "_s) + u'.';
}

QString speech::levelName(const TradeLevel& level, double price, int digits)
{
    const QString priceText = formatPrice(price, digits);
    switch (levelKind(level.kind)) {
    case LevelKind::Entry:
        //: %1 a trade, such as "buy 0.10 #1a2b3c4d", %2 a price; likewise below
        return Speech::tr("Entry of %1 at %2").arg(level.trade, priceText);
    case LevelKind::StopLoss:
        return Speech::tr("Stop loss of %1 at %2").arg(level.trade, priceText);
    case LevelKind::TakeProfit:
        return Speech::tr("Take profit of %1 at %2").arg(level.trade, priceText);
    case LevelKind::Price:
        break;
    }
    //: %1 an order, such as "buy limit 0.10 #1a2b3c4d", %2 its trigger price
    return Speech::tr("Pending %1 at %2").arg(level.trade, priceText);
}

QString speech::drawingName(const Drawing& drawing, int digits)
{
    const std::optional<DrawingKind> kind = drawingKind(drawing.type);
    if (!kind || drawing.points.size() < pointsNeeded(*kind))
        return {};
    switch (*kind) {
    case DrawingKind::HorizontalLine:
        return Speech::tr("Horizontal line at %1").arg(formatPrice(drawing.points.at(0).price, digits));
    case DrawingKind::VerticalLine:
        return Speech::tr("Vertical line at %1").arg(timeText(drawing.points.at(0).time));
    case DrawingKind::TrendLine:
        //: from a price at a time to another; likewise below
        return betweenText(Speech::tr("Trend line from %1 to %2"), drawing, digits);
    case DrawingKind::Rectangle:
        return betweenText(Speech::tr("Rectangle from %1 to %2"), drawing, digits);
    case DrawingKind::Fibonacci:
        break;
    }
    return betweenText(Speech::tr("Fibonacci retracement from %1 to %2"), drawing, digits);
}
