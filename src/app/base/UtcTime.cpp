#include "app/base/UtcTime.h"

#include <QTimeZone>

namespace {

#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
constexpr auto Utc = QTimeZone::UTC;
#else
constexpr auto Utc = Qt::UTC;
#endif

} // namespace

QDateTime utcTime(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms, Utc);
}

QDateTime utcTime(const QDate& date, const QTime& time)
{
    return {date, time, Utc};
}
