#include "app/base/UtcTime.h"
#include "support/TestMain.h"

#include <ctime>

using namespace Qt::StringLiterals;

namespace {

/// Local time is that of New York, without needing zone data: one hour of the 10th of March 2024 is skipped.
void liveInNewYork()
{
    qputenv("TZ", "EST5EDT,M3.2.0,M11.1.0");
    tzset();
}

} // namespace

class tst_UtcTime final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void millisecondsAreReadWhateverTheLocalZone()
    {
        liveInNewYork();
        QCOMPARE(utcTime(0).toString(Qt::ISODateWithMs), u"1970-01-01T00:00:00.000Z"_s);
        QCOMPARE(utcTime(-1).toString(Qt::ISODateWithMs), u"1969-12-31T23:59:59.999Z"_s);
        QCOMPARE(utcTime(1'710'054'000'000).toString(Qt::ISODateWithMs), u"2024-03-10T07:00:00.000Z"_s);
    }

    void aClockReadingStaysThatOfUtc()
    {
        liveInNewYork();
        QCOMPARE(QDateTime(QDate(2024, 3, 10), QTime(12, 0)).offsetFromUtc(), -4 * 3600);
        const QDateTime time = utcTime(QDate(2024, 3, 10), QTime(2, 30));
        QCOMPARE(time.toString(Qt::ISODateWithMs), u"2024-03-10T02:30:00.000Z"_s);
        QCOMPARE(time.toMSecsSinceEpoch(), 1'710'037'800'000);
    }
};

TAVORAN_TEST(tst_UtcTime)
#include "tst_UtcTime.moc"
