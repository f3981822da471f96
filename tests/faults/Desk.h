#pragma once

#include "app/base/TerminalSettings.h"
#include "chart/window/ChartWindow.h"
#include "faults/FaultyLine.h"
#include "faults/Heartbeat.h"
#include "mainwindow/account/AccountBook.h"
#include "mainwindow/account/AccountLoader.h"
#include "mainwindow/account/TradeActions.h"
#include "net/ApiClient.h"
#include "panes/NewsPane.h"
#include "support/StubHttpServer.h"

#include <QStringList>

#include <utility>

namespace faults {

/// Everything of the terminal that asks a platform for something, behind a faulty line.
class Desk final {
public:
    explicit Desk(StubHttpServer::Transport transport = StubHttpServer::Transport::Plain);
    ~Desk();
    Q_DISABLE_COPY_MOVE(Desk)

    /// What the platform has from now on: so many of everything that it lists, and settings with that number.
    void stock(int count);
    /// The platform carries out whatever changes something, sign-ins too. It does from the start.
    void acceptChanges();
    /// Reads everything once.
    void load();
    /// Waits until nothing is under way. What the line holds is given up meanwhile, as the time-out does.
    void settle();
    /// Lets everything arrive that was sent before.
    void turn();
    /// How much of everything is on show: accounts, open and pending trades, history, candles, drawings,
    /// news.
    [[nodiscard]] QString shown() const;

    StubHttpServer server;
    StubHttpServer elsewhere; ///< where a redirect would lead
    FaultyLine line;
    ApiClient api{TerminalSettings::instance()};
    AccountBook book;
    AccountLoader loader{api, book};
    TradeActions actions{api, book};
    NewsPane news{api};
    ChartWindow chart{api, QStringLiteral("EURUSD"), QStringLiteral("15m"), QStringLiteral("a1"), 5};
    QStringList said; ///< to the trader, since it was last cleared
    qsizetype history = 0;
    Heartbeat heart;

private:
    [[nodiscard]] bool isWaiting() const;
    void giveUpHeld();

    std::pair<int, int> m_events; ///< strikes and connections at the line, at the last beat
    int m_quietTurns = 0;         ///< of line and event loop, without such
    int m_pings = 0;
};

} // namespace faults
