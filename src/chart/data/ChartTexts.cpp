#include "chart/data/ChartTexts.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/base/UtcTime.h"
#include "chart/series/Timeframe.h"

#include <QCoreApplication>
#include <QDateTime>

#include <array>

using namespace Qt::StringLiterals;

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(ChartWidget)
};

QString timeOfDay(qint64 timeMs)
{
    constexpr qint64 minuteMs = 60'000;
    const qint64 sinceMidnight = (timeMs % dayMs + dayMs) % dayMs;
    const auto minutes = static_cast<int>(sinceMidnight / minuteMs);
    const auto digit = [](int value) { return QChar(u'0' + value); };
    const int hour = minutes / 60;
    const int minute = minutes % 60;
    const std::array clock{
        digit(hour / 10), digit(hour % 10), QChar(u':'), digit(minute / 10), digit(minute % 10)};
    return QString(clock.data(), clock.size());
}

} // namespace

QString barTimeText(qint64 timeMs, qint64 timeframeMs, bool withDate)
{
    const bool intraday = timeframeMs < dayMs;
    if (intraday && !withDate)
        return timeOfDay(timeMs);
    const QDateTime time = utcTime(timeMs);
    return time.toString(intraday ? u"dd MMM HH:mm"_s : u"dd MMM yyyy"_s);
}

QString headerText(const QString& symbol, const QString& timeframeLabel, const QString& description,
    const Candle& last, int digits)
{
    //: symbol, timeframe and time, then open, high, low and close
    return Texts::tr("%1,%2: %3   O: %4  H: %5  L: %6  C: %7")
        .arg(oneLine(symbol), oneLine(timeframeLabel), oneLine(description), formatPrice(last.open, digits),
            formatPrice(last.high, digits), formatPrice(last.low, digits), formatPrice(last.close, digits));
}

QString crosshairText(const Candle& candle, int digits)
{
    //: open, high, low and close
    return Texts::tr("O: %1   H: %2   L: %3   C: %4")
        .arg(formatPrice(candle.open, digits), formatPrice(candle.high, digits),
            formatPrice(candle.low, digits), formatPrice(candle.close, digits));
}

QString hoverText(const Candle& candle, int digits)
{
    //: open, high, low, close and volume
    return Texts::tr("O: %1  H: %2  L: %3  C: %4  V: %5")
        .arg(formatPrice(candle.open, digits), formatPrice(candle.high, digits),
            formatPrice(candle.low, digits), formatPrice(candle.close, digits),
            QString::number(candle.volume));
}
