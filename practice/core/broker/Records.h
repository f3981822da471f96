#pragma once

#include "practice/core/Types.h"
#include "practice/core/broker/Money.h"

#include <string>
#include <vector>

namespace practice {

/// Only a Plan is a challenge, with rules that it can fail and targets that it can pass.
enum class AccountKind { Wallet, Demo, Plan };

/// Only an Active account takes new orders.
enum class AccountStatus { Active, Failed, Passed };

/// Which way a position goes, or would go.
enum class Side { Buy, Sell };

/// Market is filled at once, the next four wait for their price. Balance was never an order: its trade is a
/// line of the history, without symbol and volume, whose pnl changed the balance.
enum class OrderKind { Market, BuyLimit, SellLimit, BuyStop, SellStop, Balance };

/// Pending is a waiting order, Open a position, Closed a former position, Cancelled a former order.
enum class TradeStatus { Pending, Open, Closed, Cancelled };

/// Why a trade left the live lists. Manual, StopLoss ("SL"), TakeProfit ("TP"), StopOut ("STOP_OUT": the
/// margin level fell to 50 %) and Risk ("RISK": a challenge rule was broken) end positions or, for Manual,
/// Risk, NoMargin (a trigger found too little free margin) and Phase (a challenge phase ended), orders. Reset
/// ("RESET": the account began anew) cancels both.
enum class CloseReason { None, Manual, StopLoss, TakeProfit, StopOut, Risk, NoMargin, Phase, Reset };

/// What an account of kind Plan was bought as.
struct Plan {
    std::string name;
    int steps = 1; ///< number of challenge phases, >= 1
    friend bool operator==(const Plan&, const Plan&) = default;
};

/// A trading account. Its balance changes only by the pnl of a position that is closed, by a Balance line,
/// and when a challenge moves to its next phase, which starts again from the initial balance.
struct Account {
    std::string id;
    AccountKind kind = AccountKind::Demo;
    Plan plan;
    int phase = 1;
    bool isFunded = false;
    AccountStatus status = AccountStatus::Active;
    Cents balance = 0;
    Cents initialBalance = 0;
    int leverage = 100;
    Cents dayStartEquity = 0;  ///< equity when the UTC day `dayIndex` began
    std::int64_t dayIndex = 0; ///< days since 1970-01-01 up to which swap has been charged
    friend bool operator==(const Account&, const Account&) = default;
};

/// A position or an order, live or finished.
///
/// pnl is the net result: price profit + swap - commission, so that balance + the pnl of the open positions
/// is the equity, and the sum over the history is the change of the balance, both to the cent. A challenge's
/// next phase is the exception: it starts from the initial balance without a line of its own.
struct Trade {
    std::string id;
    std::string accountId;
    std::string symbol;
    Side side = Side::Buy;
    OrderKind orderKind = OrderKind::Market;
    TradeStatus status = TradeStatus::Open;
    LotHundredths lots = 0;
    double entryPrice = 0;   ///< fill price; 0 while pending
    double exitPrice = 0;    ///< closing price; 0 until closed
    double pendingPrice = 0; ///< trigger price; 0 for a market order
    double stopLoss = 0;     ///< 0 = none
    double takeProfit = 0;   ///< 0 = none
    Cents pnl = 0;           ///< at the last price while open; final once closed; 0 while pending
    Cents margin = 0;        ///< held while open; kept as it was once closed
    Cents swap = 0;          ///< accumulated; negative costs the trader
    Cents commission = 0;    ///< amount charged, >= 0
    TimeMs createdAt = 0;    ///< when it was placed; of a position, when it was opened
    TimeMs updatedAt = 0;
    TimeMs closedAt = 0; ///< 0 until closed or cancelled
    CloseReason closeReason = CloseReason::None;
    std::string comment;
    friend bool operator==(const Trade&, const Trade&) = default;
};

/// Whether it may still change: a position or a pending order.
[[nodiscard]] inline bool isLive(const Trade& trade)
{
    return trade.status == TradeStatus::Open || trade.status == TradeStatus::Pending;
}

/// Everything the broker must be given back after a restart: all accounts, in the order in which they are
/// listed, and the trades that are live. Finished trades live in storage only.
struct BrokerState {
    std::vector<Account> accounts;
    std::vector<Trade> liveTrades;
    friend bool operator==(const BrokerState&, const BrokerState&) = default;
};

} // namespace practice
