#pragma once

#include "practice/core/broker/Records.h"

#include <string>
#include <variant>
#include <vector>

namespace practice {

/// An account's orders or positions changed. `filled`: a pending order became a position. `closeReason` says
/// why a position was closed or, with `cancelled`, why the broker gave an order up; an order that its trader
/// cancelled has neither.
struct OrdersChanged {
    std::string accountId;
    std::string tradeId;
    bool filled = false;
    CloseReason closeReason = CloseReason::None;
    bool cancelled = false;
    friend bool operator==(const OrdersChanged&, const OrdersChanged&) = default;
};

/// An account's status or phase changed; `account` is its state right after that.
struct AccountUpdated {
    Account account;
    friend bool operator==(const AccountUpdated&, const AccountUpdated&) = default;
};

using BrokerEvent = std::variant<OrdersChanged, AccountUpdated>;

/// Everything that one command or one set of prices changed. Store `accounts` and `trades` (insert or
/// replace by id) in one transaction, then reply and send `events` in their order. When storing fails,
/// hand the set to Broker::undo() instead.
struct ChangeSet {
    std::vector<Account> accounts; ///< final states, one per id
    std::vector<Trade> trades;     ///< final states, one per id; Closed and Cancelled ones are finished
    std::vector<BrokerEvent> events;

    std::vector<Account> accountsBefore; ///< for undo()
    std::vector<Trade> tradesBefore;     ///< for undo(); new trades are not among them

    /// Nothing to store and nothing to send.
    [[nodiscard]] bool empty() const { return accounts.empty() && trades.empty() && events.empty(); }
};

} // namespace practice
