#include "app/base/UtcTime.h"

#include <QTimeZone>

namespace {

#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
constexpr auto utc = QTimeZone::UTC;
#else
constexpr auto utc = Qt::UTC;
#endif

} // namespace

QDateTime utcTime(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms, utc);
}

QDateTime utcTime(const QDate& date, const QTime& time)
{
    return {date, time, utc};
}
