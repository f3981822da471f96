#pragma once

#include "practice/core/broker/IdSource.h"
#include "practice/core/broker/Ledger.h"
#include "practice/core/broker/PriceBoard.h"

#include <string>

namespace practice {

/// The steps that commands, triggers and limits share in filling and closing, at one moment and its prices.
/// Each writes its record, moves the money and emits its event.
class TradeSteps {
public:
    /// Keeps references; meant to live for one command or one set of prices.
    TradeSteps(Ledger& ledger, const PriceBoard& prices, TimeMs now);

    /// Takes a new position or order into the books.
    LiveTrade& accept(Trade trade);

    /// Fills a pending order at the market; when the free margin does not suffice, cancels it instead.
    /// False when there is no price: the order waits on.
    bool fillOrder(LiveTrade& order);

    /// False when there is no price to close at: the position stays.
    bool closePosition(LiveTrade& position, CloseReason reason);

    void cancelOrder(LiveTrade& order, CloseReason reason);

    /// Closes what can be closed and cancels all orders of the account.
    void closeEverything(LiveAccount& account, CloseReason reason);

    /// Cancels an order or a position as if it had never been: nothing is gained, lost or charged.
    void voidTrade(LiveTrade& trade, CloseReason reason);

    /// Sets the balance and adds a line about that, with a new id, to the history; nothing when it is that
    /// already.
    void setBalance(LiveAccount& account, Cents balance, const IdSource& newId, std::string comment);

    void setStatus(LiveAccount& account, AccountStatus status);

    [[nodiscard]] Ledger& ledger() { return m_ledger; }
    [[nodiscard]] const PriceBoard& prices() const { return m_prices; }
    [[nodiscard]] TimeMs now() const { return m_now; }

private:
    Ledger& m_ledger;
    const PriceBoard& m_prices;
    TimeMs m_now;
};

} // namespace practice
