#include "practice/server/WireRecords.h"

#include "practice/core/broker/RecordText.h"
#include "practice/server/JsonText.h"

#include <nlohmann/json.hpp>

namespace practice {

using nlohmann::json;

namespace {

json priceOrNull(double price, int digits)
{
    return price > 0 ? json(fixedText(price, digits)) : json();
}

json timeOrNull(TimeMs time)
{
    return time != 0 ? json(isoTime(time)) : json();
}

} // namespace

json accountRecord(const Account& account, const AccountFigures& figures)
{
    return {
        {"id", account.id},
        {"isWallet", account.kind == AccountKind::Wallet},
        {"type", toText(account.kind)},
        {"Plan", {{"name", account.plan.name}, {"steps", account.plan.steps}}},
        {"phase", account.phase},
        {"isFunded", account.isFunded},
        {"status", toText(account.status)},
        {"balance", decimalText(account.balance)},
        {"initialBalance", decimalText(account.initialBalance)},
        {"equity", decimalText(figures.equity)},
        {"margin", toUsd(figures.margin)},
        {"freeMargin", toUsd(figures.freeMargin)},
        {"leverage", account.leverage},
        {"currency", "USD"},
    };
}

json tradeRecord(const Trade& trade, int digits)
{
    return {
        {"id", trade.id},
        {"accountId", trade.accountId},
        {"symbol", trade.symbol},
        {"type", toText(trade.side)},
        {"orderKind", toText(trade.orderKind)},
        {"status", toText(trade.status)},
        {"lotSize", fixedText(toLots(trade.lots), 2)},
        {"entryPrice", priceOrNull(trade.entryPrice, digits)},
        {"exitPrice", priceOrNull(trade.exitPrice, digits)},
        {"pendingPrice", priceOrNull(trade.pendingPrice, digits)},
        {"stopLoss", priceOrNull(trade.stopLoss, digits)},
        {"takeProfit", priceOrNull(trade.takeProfit, digits)},
        {"pnl", decimalText(trade.pnl)},
        {"margin", toUsd(trade.margin)},
        {"swap", decimalText(trade.swap)},
        {"commission", decimalText(trade.commission)},
        {"createdAt", timeOrNull(trade.createdAt)},
        {"updatedAt", timeOrNull(trade.updatedAt)},
        {"closedAt", timeOrNull(trade.closedAt)},
        {"closeReason", toText(trade.closeReason)},
        {"comment", trade.comment},
    };
}

json symbolRecord(const SymbolSpec& symbol, double dailyOpen)
{
    return {
        {"name", symbol.name},
        {"description", symbol.description},
        {"digits", symbol.digits},
        {"sortOrder", symbol.sortOrder},
        {"dailyOpen", fixedText(dailyOpen, symbol.digits)},
        {"contractSize", symbol.contractSize},
        {"commission", symbol.commissionPerLot},
        {"swapLong", symbol.swapLong},
        {"swapShort", symbol.swapShort},
        {"minLot", symbol.minLots},
        {"maxLot", symbol.maxLots},
        {"lotStep", symbol.lotStep},
    };
}

std::string eventMessage(const OrdersChanged& event)
{
    json message{{"type", "orders_changed"}, {"accountId", event.accountId}, {"tradeId", event.tradeId}};
    if (event.filled)
        message["filled"] = true;
    if (event.closeReason != CloseReason::None)
        message["closeReason"]
            = (event.cancelled ? "CANCELLED_" : "") + std::string(toText(event.closeReason));
    return jsonText(message);
}

std::string eventMessage(const Account& account, const AccountFigures& figures)
{
    // The account's record, but "type" names the message here.
    json message = accountRecord(account, figures);
    message["type"] = "account_update";
    message["accountId"] = account.id;
    return jsonText(message);
}

std::string priceMap(const std::vector<SymbolSpec>& symbols, std::span<const SymbolQuote> quotes)
{
    std::string text;
    text.reserve(quotes.size() * 48 + 2);
    text.push_back('{');
    for (const SymbolQuote& entry : quotes) {
        const SymbolSpec& symbol = symbols[entry.symbol];
        if (text.size() > 1)
            text.push_back(',');
        text += json(symbol.name).dump();
        text += ":{\"bid\":";
        appendFixed(text, entry.quote.bid, symbol.digits);
        text += ",\"ask\":";
        appendFixed(text, entry.quote.ask, symbol.digits);
        text.push_back('}');
    }
    text.push_back('}');
    return text;
}

std::string candleArray(std::span<const Bar> bars, int digits)
{
    std::string text;
    text.reserve(bars.size() * 128 + 2);
    text.push_back('[');
    for (const Bar& bar : bars) {
        if (text.size() > 1)
            text.push_back(',');
        text += "{\"timestamp\":\"";
        text += isoTime(bar.time);
        text += "\",\"open\":";
        appendFixed(text, bar.open, digits);
        text += ",\"high\":";
        appendFixed(text, bar.high, digits);
        text += ",\"low\":";
        appendFixed(text, bar.low, digits);
        text += ",\"close\":";
        appendFixed(text, bar.close, digits);
        text += ",\"volume\":";
        text += std::to_string(bar.volume);
        text.push_back('}');
    }
    text.push_back(']');
    return text;
}

} // namespace practice
