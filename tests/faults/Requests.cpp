#include "faults/Requests.h"

#include "app/PublicSettings.h"
#include "chart/window/ChartWidget.h"
#include "faults/Desk.h"
#include "support/Records.h"

using namespace Qt::StringLiterals;

namespace faults {

namespace {

using Kind = Request::Kind;

// Of this request alone the time-out is real, since it is one that blocks.
constexpr int settingsPatience = 2000;

Drawing lineAt(const QString& id, double price)
{
    return {id, u"hline"_s, {{1000, price}}, Drawing().color, false};
}

void askSettings(Desk& desk)
{
    const PublicSettings got
        = fetchPublicSettings(QUrl(desk.line.url() + u"/api/settings/public"_s), settingsPatience);
    desk.said.append(
        got.error.isEmpty() ? u"Settings: "_s + got.terminalServerUrl : u"Settings failed: "_s + got.error);
}

} // namespace

bool Request::isSentOnce() const
{
    return verb != "GET";
}

QString Request::successWith(int count) const
{
    return success.contains("%1"_L1) ? success.arg(count) : success;
}

const QList<Request>& allRequests()
{
    static const QList<Request> all{
        {"settings", "GET", "/api/settings/public", Kind::Read, askSettings,
            u"Settings: https://x%1.example"_s, u"Settings failed: "_s, {}},
        {"sign-in", "POST", "/api/auth/login", Kind::Read,
            [](Desk& desk) { desk.api.login(u"a@b.c"_s, u"secret"_s); }, u"Signed in"_s,
            u"Sign-in failed: "_s, {}},
        {"accounts", "GET", "/api/accounts", Kind::Read, [](Desk& desk) { desk.loader.refreshAccounts(); },
            {}, u"Network: Failed to load accounts: "_s, u"accounts"_s},
        {"open trades", "GET", "/api/trades/open", Kind::Read,
            [](Desk& desk) { desk.loader.refreshOpenTrades(); }, {}, u"Network: Failed to load trades: "_s,
            u"open"_s},
        {"pending orders", "GET", "/api/trades/pending", Kind::Read,
            [](Desk& desk) { desk.loader.refreshOpenTrades(); }, {}, {}, u"pending"_s},
        {"history", "GET", "/api/trades/history", Kind::Read,
            [](Desk& desk) { desk.loader.refreshHistory(); }, {}, {}, u"history"_s},
        {"candles", "GET", "/api/candles", Kind::Read, [](Desk& desk) { desk.chart.reload(); },
            u"Chart: EURUSD,M15: %1 candles loaded"_s, u"Chart: EURUSD: failed to load candles: "_s,
            u"candles"_s},
        {"drawings", "GET", "/api/drawings", Kind::Read, [](Desk& desk) { desk.chart.load(); },
            u"Chart: EURUSD,M15: %1 candles loaded"_s, u"Chart: EURUSD: failed to load drawings: "_s,
            u"drawings"_s},
        {"news", "GET", "/api/news/upcoming", Kind::Read, [](Desk& desk) { desk.news.refresh(); }, {}, {},
            u"news"_s},
        {"place", "POST", "/api/trades/place", Kind::Order,
            [](Desk& desk) { desk.actions.quickTrade(u"EURUSD"_s, u"BUY"_s, 0.1); },
            u"Trade: One-click BUY EURUSD executed"_s, u"Trade: One-click order failed: "_s, {}},
        {"modify", "PUT", "/api/trades/modify/t1", Kind::Order,
            [](Desk& desk) { desk.actions.moveLevel(u"t1"_s, u"sl"_s, 1.05); }, u"Trade: sl moved to 1.05"_s,
            u"Trade: Modify failed: "_s, {}},
        {"close", "POST", "/api/trades/close/t1", Kind::Order,
            [](Desk& desk) { desk.actions.closePosition(records::position("t1")); },
            u"Trade: Position closed"_s, u"Trade: Close failed: "_s, {}},
        {"cancel", "POST", "/api/trades/cancel/p1", Kind::Order,
            [](Desk& desk) { desk.actions.cancelOrder(records::pendingOrder("p1")); },
            u"Trade: Pending order cancelled"_s, u"Trade: Cancel failed: "_s, {}},
        {"new drawing", "POST", "/api/drawings", Kind::Change,
            [](Desk& desk) {
                ChartWidget& chart = desk.chart.chart();
                const Drawing drawing = lineAt({}, 1.5);
                chart.setDrawings(chart.drawings() + QList{drawing});
                Q_EMIT chart.drawingCreated(drawing);
            },
            {}, u"Chart: EURUSD: failed to save the drawing: "_s, {}},
        {"moved drawing", "PUT", "/api/drawings/d1", Kind::Change,
            [](Desk& desk) { Q_EMIT desk.chart.chart().drawingUpdated(lineAt(u"d1"_s, 1.6)); }, {},
            u"Chart: EURUSD: failed to save the drawing: "_s, {}},
        {"deleted drawing", "DELETE", "/api/drawings/d1", Kind::Change,
            [](Desk& desk) { Q_EMIT desk.chart.chart().drawingDeleted(u"d1"_s); }, {},
            u"Chart: EURUSD: failed to delete the drawing: "_s, {}},
    };
    return all;
}

} // namespace faults
