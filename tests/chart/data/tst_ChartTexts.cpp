#include "chart/data/ChartTexts.h"

#include "chart/series/Timeframe.h"
#include "support/TestMain.h"
#include "support/TimeZone.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 minuteMs = 60'000;
/// 2 June 2026, 09:05 UTC.
constexpr qint64 morning = 1'780'358'400'000 + 545 * minuteMs;

} // namespace

class TestChartTexts final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        useForeignTimeZone();
    }

    void short_bars_show_the_time_and_on_demand_the_date()
    {
        QCOMPARE(barTimeText(morning, 900'000, false), u"09:05"_s);
        QCOMPARE(barTimeText(morning, 900'000, true), u"02 Jun 09:05"_s);
        QCOMPARE(barTimeText(morning, dayMs - 1, false), u"09:05"_s);
        QCOMPARE(barTimeText(0, 60'000, false), u"00:00"_s);
        QCOMPARE(barTimeText(dayMs - 1, 60'000, false), u"23:59"_s);
    }

    void bars_of_a_day_and_longer_show_the_date()
    {
        QCOMPARE(barTimeText(morning, dayMs, false), u"02 Jun 2026"_s);
        QCOMPARE(barTimeText(morning, dayMs, true), u"02 Jun 2026"_s);
        QCOMPARE(barTimeText(morning, 30 * dayMs, false), u"02 Jun 2026"_s);
    }

    void times_before_the_epoch_have_a_time_of_day()
    {
        QCOMPARE(barTimeText(-minuteMs, 60'000, false), u"23:59"_s);
        QCOMPARE(barTimeText(-minuteMs, 60'000, true), u"31 Dec 23:59"_s);
    }

    void times_beyond_every_calendar_do_no_harm()
    {
        for (const qint64 time : {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()}) {
            QCOMPARE(barTimeText(time, 60'000, false).size(), 5);
            QVERIFY(barTimeText(time, 60'000, true).size() < 40);
            QVERIFY(barTimeText(time, dayMs, true).size() < 40);
        }
    }

    void texts_of_a_bar_use_the_digits_of_the_symbol()
    {
        const Candle bar{morning, 1.1, 1.25, 1.05, 1.2, 42};
        QCOMPARE(headerText(u"EURUSD"_s, u"M15"_s, u"Euro"_s, bar, 3),
            u"EURUSD,M15: Euro   O: 1.100  H: 1.250  L: 1.050  C: 1.200"_s);
        QCOMPARE(crosshairText(bar, 2), u"O: 1.10   H: 1.25   L: 1.05   C: 1.20"_s);
        QCOMPARE(hoverText(bar, 2), u"O: 1.10  H: 1.25  L: 1.05  C: 1.20  V: 42"_s);
    }

    void digits_out_of_range_are_clamped()
    {
        const Candle bar{morning, 1.0, 2.0, 1.0, 2.0, 1'000'000};
        QCOMPARE(hoverText(bar, -7), u"O: 1  H: 2  L: 1  C: 2  V: 1000000"_s);
        QCOMPARE(crosshairText(bar, 999),
            u"O: 1.000000000000000   H: 2.000000000000000   L: 1.000000000000000   C: 2.000000000000000"_s);
    }

    void server_text_is_shown_as_it_is_on_one_line()
    {
        const Candle bar{morning, 1.0, 1.0, 1.0, 1.0, 1};
        QCOMPARE(
            headerText(u"A%4"_s, u"%1"_s, u"%2\n%7"_s, bar, 0), u"A%4,%1: %2 %7   O: 1  H: 1  L: 1  C: 1"_s);
    }
};

TAVORAN_TEST(TestChartTexts)
#include "tst_ChartTexts.moc"
