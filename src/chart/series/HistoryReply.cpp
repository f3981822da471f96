#include "chart/series/HistoryReply.h"

#include "app/base/PriceRule.h"
#include "app/base/UtcTime.h"
#include "chart/series/PlainHistory.h"
#include "net/records/CandleRecord.h"

#include <QDate>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QTimeZone>

#include <algorithm>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 msPerSecond = 1000;
constexpr qint64 secondsPerDay = 86400;

/// The `count` decimal digits at `from`, or -1 when one of them is not a digit.
template <typename View> int digitsAt(View text, qsizetype from, qsizetype count)
{
    int value = 0;
    for (qsizetype i = from; i < from + count; ++i) {
        const char16_t c = QChar(text[i]).unicode();
        if (c < u'0' || c > u'9')
            return -1;
        value = value * 10 + (c - u'0');
    }
    return value;
}

/// Days since the epoch of a proleptic Gregorian date.
qint64 daysSinceEpoch(int year, int month, int day)
{
    const qint64 y = month <= 2 ? year - 1 : year;
    const qint64 era = y / 400;
    const qint64 yearOfEra = y - era * 400;
    const qint64 dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const qint64 dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

/// The one form servers really send, "2014-05-01T00:00:00.000Z" (fraction optional); -1 for any other.
/// Qt's general parser costs more than the whole JSON parse on a long history.
template <typename View> qint64 utcTimeMs(View text)
{
    const qsizetype length = text.size();
    const auto has = [text](qsizetype at, char16_t c) { return QChar(text[at]) == QChar(c); };
    if ((length != 20 && length != 24) || !has(length - 1, u'Z') || !has(4, u'-') || !has(7, u'-')
        || !has(10, u'T') || !has(13, u':') || !has(16, u':'))
        return -1;
    const int year = digitsAt(text, 0, 4);
    const int month = digitsAt(text, 5, 2);
    const int day = digitsAt(text, 8, 2);
    const int hour = digitsAt(text, 11, 2);
    const int minute = digitsAt(text, 14, 2);
    const int second = digitsAt(text, 17, 2);
    const int millis = length == 24 ? (has(19, u'.') ? digitsAt(text, 20, 3) : -1) : 0;
    const bool plausible = year >= 1 && QDate::isValid(year, month, day) && hour >= 0 && hour <= 23
        && minute >= 0 && minute <= 59 && second >= 0 && second <= 59 && millis >= 0;
    if (!plausible)
        return -1;
    const qint64 seconds
        = daysSinceEpoch(year, month, day) * secondsPerDay + hour * 3600LL + minute * 60LL + second;
    return seconds * msPerSecond + millis;
}

qint32 tickVolume(double ticks)
{
    constexpr double most = std::numeric_limits<qint32>::max();
    return static_cast<qint32>(std::clamp(ticks, 0.0, most));
}

} // namespace

qint64 isoTimeMs(QLatin1StringView text)
{
    const qint64 fast = utcTimeMs(text);
    return fast >= 0 ? fast : isoTimeMs(QString(text));
}

bool hasPrices(const Candle& candle, int digits)
{
    return isPrice(candle.open, digits) && isPrice(candle.high, digits) && isPrice(candle.low, digits)
        && isPrice(candle.close, digits);
}

bool isSound(const Candle& candle, const CandleRule& rule)
{
    return candle.time > 0 && candle.time <= rule.nowMs + msPerSecond * secondsPerDay
        && hasPrices(candle, rule.digits);
}

qint64 isoTimeMs(const QString& text)
{
    const qint64 fast = utcTimeMs(QStringView(text));
    if (fast >= 0)
        return fast;
    QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (!time.isValid())
        return 0;
    if (time.timeSpec() == Qt::LocalTime)
        time = utcTime(time.date(), time.time());
    return std::max<qint64>(time.toMSecsSinceEpoch(), 0);
}

HistoryReply HistoryReply::read(const QJsonDocument& document, const CandleRule& rule)
{
    const QJsonArray rows = document.array();
    HistoryReply reply;
    reply.received = rows.size();
    reply.candles.reserve(static_cast<std::size_t>(rows.size()));
    for (const QJsonValue row : rows) {
        const QJsonObject fields = row.toObject();
        const Candle reading{isoTimeMs(candle::time(fields)), candle::open(fields), candle::high(fields),
            candle::low(fields), candle::close(fields), tickVolume(candle::volume(fields))};
        if (isSound(reading, rule))
            reply.candles.push_back(reading);
    }
    return reply;
}

HistoryReply HistoryReply::read(const QByteArray& json, const CandleRule& rule)
{
    if (std::optional<HistoryReply> plain = readPlainHistory(json, rule))
        return std::move(*plain);
    return read(QJsonDocument::fromJson(json), rule);
}
