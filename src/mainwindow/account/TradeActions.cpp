#include "mainwindow/account/TradeActions.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "mainwindow/account/AccountBook.h"
#include "net/TradeRequest.h"
#include "net/records/LevelsBody.h"
#include "net/records/OrderBody.h"
#include "net/records/TradeRecord.h"

#include <QLocale>

#include <utility>

using namespace Qt::StringLiterals;

TradeActions::TradeActions(ApiClient& api, const AccountBook& book, QObject* parent)
    : QObject(parent)
    , m_api(api)
    , m_book(book)
    , m_expertRequests(api)
{
}

void TradeActions::setAlgoTrading(bool on)
{
    if (on == m_algoTrading)
        return;
    m_algoTrading = on;
    Q_EMIT expertLine(
        tr("Expert"), on ? tr("Algo Trading enabled") : tr("Algo Trading disabled"), LineKind::Ordinary);
    if (on)
        return;
    if (const int dropped = m_expertRequests.dropWaiting(); dropped > 0) {
        Q_EMIT expertLine(tr("Expert"),
            tr("Algo Trading is OFF — %1 waiting request(s) not sent.", nullptr, dropped).arg(dropped),
            LineKind::Failure);
    }
}

void TradeActions::closePosition(const QJsonObject& trade)
{
    std::optional<TradeRequest> request = TradeRequest::close(trade);
    if (!request)
        return refuse(tr("Close failed: %1"));
    std::move(*request).send(m_api, this, [this](const ReplyOutcome& outcome) {
        tellTrade(outcome.ok, SoundKind::Close,
            outcome.ok ? tr("Position closed") : tr("Close failed: %1").arg(outcome.error));
        refreshEverything();
    });
}

void TradeActions::cancelOrder(const QJsonObject& trade)
{
    std::optional<TradeRequest> request = TradeRequest::cancel(trade);
    if (!request)
        return refuse(tr("Cancel failed: %1"));
    std::move(*request).send(m_api, this, [this](const ReplyOutcome& outcome) {
        tellTrade(outcome.ok, SoundKind::Close,
            outcome.ok ? tr("Pending order cancelled") : tr("Cancel failed: %1").arg(outcome.error));
        refreshAfter(outcome, &TradeActions::tradesRefreshWanted);
    });
}

void TradeActions::moveLevel(const QString& tradeId, const QString& kind, double price)
{
    const QJsonObject trade = findTrade(tradeId);
    if (trade.isEmpty())
        return;
    std::optional<TradeRequest> request = TradeRequest::moveLevel(trade, levelKind(kind), price);
    if (!request)
        return refuse(tr("Modify failed: %1"));
    std::move(*request).send(m_api, this, [this, kind, price](const ReplyOutcome& outcome) {
        // Not 'g', which writes 100000 as 1e+05.
        const QString shown = QString::number(price, 'f', QLocale::FloatingPointShortest);
        tellTrade(outcome.ok, SoundKind::Open,
            //: %1 the level ("sl", "tp"), %2 its new price
            outcome.ok ? tr("%1 moved to %2").arg(kind, shown) : tr("Modify failed: %1").arg(outcome.error));
        refreshAfter(outcome, &TradeActions::tradesRefreshWanted);
    });
}

void TradeActions::quickTrade(const QString& symbol, const QString& side, double lots)
{
    if (m_book.currentAccountId().isEmpty())
        return;
    OrderTicket ticket;
    ticket.symbol = symbol;
    ticket.lots = lots;
    ticket.side = sideOf(side);
    const QNetworkReply& reply
        = TradeRequest::place(orderBody(ticket), m_book.currentAccountId())
              .send(m_api, this, [this, symbol, side](const ReplyOutcome& outcome) {
                  tellTrade(outcome.ok, SoundKind::Open,
                      //: %1 the side, %2 the symbol
                      outcome.ok ? tr("One-click %1 %2 executed").arg(side, shownName(symbol))
                                 : tr("One-click order failed: %1").arg(outcome.error));
                  refreshAfter(outcome, &TradeActions::refreshAccountsAndTrades);
              });
    Q_EMIT tradeLeaves(reply);
}

void TradeActions::expertOrder(const QJsonObject& body)
{
    if (!m_algoTrading) {
        Q_EMIT expertLine(tr("Expert"), tr("Algo Trading is OFF — order ignored. Enable it in the toolbar."),
            LineKind::Failure);
        return;
    }
    if (m_book.currentAccountId().isEmpty())
        return;
    TradeRequest request = TradeRequest::place(body, m_book.currentAccountId());
    m_expertRequests.order(std::move(request), [this, order = body](const ReplyOutcome& outcome) {
        Q_EMIT soundWanted(outcome.ok ? SoundKind::Open : SoundKind::Error);
        Q_EMIT expertLine(tr("Expert"),
            //: %1 the side, %2 lots, %3 the symbol
            outcome.ok ? tr("%1 %2 %3 executed")
                             .arg(trade::typeText(order), formatVolume(trade::lots(order)),
                                 shownName(trade::symbol(order)))
                       : tr("Order failed: %1").arg(outcome.error),
            outcome.ok ? LineKind::Ordinary : LineKind::Failure);
        refreshAfter(outcome, &TradeActions::refreshAccountsAndTrades);
    });
}

void TradeActions::expertCloseAll(const QString& symbol)
{
    if (!m_algoTrading) {
        Q_EMIT expertLine(tr("Expert"), tr("Algo Trading is OFF — close ignored."), LineKind::Failure);
        return;
    }
    int closing = 0;
    for (const auto& value : m_book.openTrades()) {
        const QJsonObject trade = value.toObject();
        if (trade::symbol(trade) != symbol)
            continue;
        std::optional<TradeRequest> request = TradeRequest::close(trade);
        if (!request)
            continue;
        ++closing;
        m_expertRequests.close(std::move(*request), [this](const ReplyOutcome&) { refreshEverything(); });
    }
    if (closing == 0)
        return;
    Q_EMIT soundWanted(SoundKind::Close);
    Q_EMIT expertLine(tr("Expert"),
        //: %2 the symbol
        tr("Closing %1 position(s) on %2", nullptr, closing).arg(QString::number(closing), shownName(symbol)),
        LineKind::Ordinary);
}

QJsonObject TradeActions::findTrade(const QString& tradeId) const
{
    for (const QJsonArray& list : {m_book.openTrades(), m_book.pendingOrders()}) {
        for (const auto& value : list) {
            QJsonObject trade = value.toObject();
            if (trade::id(trade) == tradeId)
                return trade;
        }
    }
    return {};
}

void TradeActions::refuse(const QString& message)
{
    tellTrade(false, SoundKind::Error, message.arg(tr("this trade has no usable id")));
}

void TradeActions::tellTrade(bool ok, SoundKind success, const QString& message)
{
    Q_EMIT soundWanted(ok ? success : SoundKind::Error);
    Q_EMIT journalLine(tr("Trade"), message);
    Q_EMIT failureChanged(ok ? QString() : message);
}

void TradeActions::refreshAfter(const ReplyOutcome& outcome, void (TradeActions::*usual)())
{
    if (outcome.isUnanswered())
        refreshEverything();
    else
        (this->*usual)();
}

void TradeActions::refreshEverything()
{
    refreshAccountsAndTrades();
    Q_EMIT historyRefreshWanted();
}

void TradeActions::refreshAccountsAndTrades()
{
    Q_EMIT accountsRefreshWanted();
    Q_EMIT tradesRefreshWanted();
}
