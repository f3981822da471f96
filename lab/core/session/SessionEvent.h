#pragma once

#include "practice/core/SymbolCatalog.h"
#include "practice/core/broker/Records.h"
#include "practice/core/broker/TradeCommand.h"

#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace lab {

/// Prices that went out to everybody, or that the broker alone looked at.
struct PricesEvent {
    bool announced = true;
    std::vector<practice::SymbolQuote> quotes;
};

/// A trader's order or another wish, and what became of it.
struct CommandEvent {
    practice::TradeCommand command;
    int status = 200;    ///< as of HTTP: not 200 is a refusal
    std::string outcome; ///< the trade's id, or the reason of the refusal
};

/// A trade or an account as it is after a change.
struct TradeEvent {
    practice::Trade trade;
};
struct AccountEvent {
    practice::Account account;
};

// What a client was told.

/// The balances of a trader's accounts, by their ids.
struct BalancesEvent {
    std::vector<std::pair<std::string, practice::Cents>> balances;
};

struct ToldPosition {
    std::string id;
    std::string symbol;
    practice::Cents pnl = 0;
};

/// All open positions of an account.
struct PositionsEvent {
    std::string accountId;
    std::vector<ToldPosition> positions;
};

/// All pending orders of an account, which are not written down.
struct OrdersEvent {
    std::string accountId;
};

/// Results of open positions, by their ids.
struct ResultsEvent {
    std::string accountId;
    std::vector<std::pair<std::string, practice::Cents>> results;
};

/// Bars that a chart begins with.
struct BarsEvent {
    std::string symbol;
    practice::Timeframe timeframe = practice::Timeframe::M1;
    std::vector<practice::Bar> bars;
};

/// Something that happened in a recorded session.
struct SessionEvent {
    practice::TimeMs time = 0;
    std::variant<PricesEvent, CommandEvent, TradeEvent, AccountEvent, BalancesEvent, PositionsEvent,
        OrdersEvent, ResultsEvent, BarsEvent>
        what;
};

/// How a recorded session began.
struct SessionStart {
    std::string version; ///< of the platform
    practice::TimeMs time = 0;
    std::vector<practice::SymbolSpec> symbols; ///< of what a trader is charged; nothing of how prices move
    practice::BrokerState state;
    std::vector<practice::SymbolQuote> prices;
};

} // namespace lab
