#include "chart/ChartWindowFixture.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::candleBody;
using fixtures::ChartServer;

namespace {

/// A chart before a server that has a history of so many candles.
struct LoggedChart {
    explicit LoggedChart(int candles) { holds(candles); }

    /// From now on the history holds so many.
    void holds(int candles)
    {
        served.server.on("GET", "/api/candles", StubAnswer::json(candleBody(candles, 1.25)));
    }

    ChartServer served;
    ChartWindow window{served.api, u"EURUSD"_s, u"15m"_s, {}, 5};
    QSignalSpy log{&window, &ChartWindow::logMessage};
};

} // namespace

/// Where the view stands after each history.
class tst_ChartCatchUp final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFirstHistoryKeepsARestoredViewStill()
    {
        LoggedChart chart(3);
        chart.window.restoreState({{u"autoScroll"_s, false}, {u"chartShift"_s, true}});
        const QJsonObject restored = chart.window.saveState();
        chart.window.load();
        QTRY_COMPARE(chart.log.size(), 1);
        QVERIFY(!chart.window.chart().autoScroll());
        QCOMPARE(chart.window.chart().rightBarIndex(), 2.0);
        QCOMPARE(chart.window.saveState(), restored);
    }

    void laterHistoriesFollowTheEndAgain()
    {
        LoggedChart chart(3);
        chart.window.restoreState({{u"autoScroll"_s, false}});
        chart.window.load();
        QTRY_COMPARE(chart.log.size(), 1);
        chart.window.reload();
        QTRY_COMPARE(chart.log.size(), 2);
        QVERIFY(chart.window.chart().autoScroll());
    }

    void catchingUpKeepsAViewThatWasScrolledBack()
    {
        LoggedChart chart(3);
        chart.window.load();
        QTRY_COMPARE(chart.log.size(), 1);
        chart.holds(5);
        chart.window.catchUp();
        QTRY_COMPARE(chart.log.size(), 2);
        QCOMPARE(chart.log.last().at(1), u"EURUSD,M15: 5 candles loaded"_s);
        QCOMPARE(chart.window.chart().rightBarIndex(), 4.0);
        QVERIFY(chart.window.chart().autoScroll());
        chart.window.chart().setAutoScroll(false);
        chart.holds(9);
        chart.window.catchUp();
        QTRY_COMPARE(chart.log.size(), 3);
        QCOMPARE(chart.window.chart().candles().size(), std::size_t(9));
        QCOMPARE(chart.window.chart().rightBarIndex(), 4.0);
        QVERIFY(!chart.window.chart().autoScroll());
    }

    void catchingUpDoesNotTakeBackTheWishToSeeTheEnd()
    {
        LoggedChart chart(3);
        chart.window.load();
        QTRY_COMPARE(chart.log.size(), 1);
        chart.window.chart().setAutoScroll(false);
        chart.served.server.on("GET", "/api/candles", StubAnswer::held());
        chart.window.reload();
        chart.window.catchUp();
        QTRY_COMPARE(chart.served.server.heldCount(), 1);
        chart.holds(5);
        QVERIFY(chart.served.server.release(StubAnswer::json(candleBody(4, 1.25))));
        QTRY_COMPARE(chart.log.size(), 2);
        QCOMPARE(chart.window.chart().rightBarIndex(), 4.0);
        QVERIFY(chart.window.chart().autoScroll());
    }

    void aWishThatFailedDoesNotMoveTheViewLater()
    {
        LoggedChart chart(3);
        chart.window.load();
        QTRY_COMPARE(chart.log.size(), 1);
        chart.served.server.once("GET", "/api/candles", StubAnswer::message(u"Not now"_s, 503));
        chart.holds(5);
        chart.window.reload();
        QTRY_COMPARE(chart.log.size(), 2);
        chart.window.chart().setAutoScroll(false);
        chart.window.catchUp();
        QTRY_COMPARE(chart.log.size(), 3);
        QCOMPARE(chart.window.chart().rightBarIndex(), 2.0);
        QVERIFY(!chart.window.chart().autoScroll());
    }

    void readingAgainAsksForHistoryAndObjects()
    {
        LoggedChart chart(3);
        chart.window.load();
        QTRY_COMPARE(chart.log.size(), 1);
        chart.window.chart().setAutoScroll(false);
        chart.window.loadAgain();
        QTRY_COMPARE(chart.log.size(), 2);
        QVERIFY(!chart.window.chart().autoScroll());
        QTRY_COMPARE(chart.served.server.count("GET", "/api/drawings"), 2);
    }

    void aTimeframeChosenBeforeTheFirstHistoryFollowsTheEnd()
    {
        LoggedChart chart(3);
        chart.window.restoreState({{u"autoScroll"_s, false}});
        chart.window.setTimeframe(u"1h"_s);
        QTRY_COMPARE(chart.log.size(), 1);
        QVERIFY(chart.window.chart().autoScroll());
    }
};

TAVORAN_TEST(tst_ChartCatchUp)
#include "tst_ChartCatchUp.moc"
