#pragma once

#include "app/base/LineKind.h"
#include "app/base/SoundKind.h"
#include "mainwindow/account/ExpertRequests.h"

#include <QJsonObject>
#include <QObject>
#include <QString>

class AccountBook;
class ApiClient;
class QNetworkReply;

/// Sends one request for each thing that a trader or a script wants done with a trade, and reports what
/// became of it: a line, a sound, and the wish to read lists again (all lists, where no answer came). No
/// request is repeated, and a trader's request leaves at once. Scripts trade only while algo trading is on;
/// their requests that still wait when it goes off are dropped.
class TradeActions final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TradeActions)

public:
    /// Client and book must outlive the actions.
    TradeActions(ApiClient& api, const AccountBook& book, QObject* parent = nullptr);

    /// Off at start; never saved.
    [[nodiscard]] bool isAlgoTradingOn() const { return m_algoTrading; }

    [[nodiscard]] ExpertRequests& expertRequests() { return m_expertRequests; }

public Q_SLOTS:
    void setAlgoTrading(bool on);

    void closePosition(const QJsonObject& trade);
    void cancelOrder(const QJsonObject& trade);
    /// Moves one level of a trade that is known by this id, and keeps the others; nothing for an unknown id.
    /// `kind` is "SL" or "TP", else the entry price is meant.
    void moveLevel(const QString& tradeId, const QString& kind, double price);
    /// A market order; `side` is "SELL" or "BUY". Nothing without an account.
    void quickTrade(const QString& symbol, const QString& side, double lots);

    /// A script's order, complete but for the account.
    void expertOrder(const QJsonObject& body);
    /// Closes every open position on the symbol for a script.
    void expertCloseAll(const QString& symbol);

Q_SIGNALS:
    /// A one-click trade was sent in this turn of the event loop; its body leaves in one of the next.
    void tradeLeaves(const QNetworkReply& reply);
    void journalLine(const QString& source, const QString& message);
    /// Why the latest thing that the trader wanted was not done, as the Journal has it; empty once one was.
    void failureChanged(const QString& line);
    void expertLine(const QString& source, const QString& message, LineKind kind);
    void soundWanted(SoundKind kind);
    void accountsRefreshWanted();
    void tradesRefreshWanted();
    void historyRefreshWanted();

private:
    [[nodiscard]] QJsonObject findTrade(const QString& tradeId) const;
    void refuse(const QString& message);
    void tellTrade(bool ok, SoundKind success, const QString& message);
    void refreshEverything();
    void refreshAccountsAndTrades();
    /// Asks for the lists that an ended request may have changed: the usual ones, or all of them where no
    /// answer came.
    void refreshAfter(const ReplyOutcome& outcome, void (TradeActions::*usual)());

    ApiClient& m_api;
    const AccountBook& m_book;
    ExpertRequests m_expertRequests;
    bool m_algoTrading = false;
};
