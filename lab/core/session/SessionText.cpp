#include "lab/core/session/SessionText.h"

#include "practice/core/broker/RecordText.h"

#include <array>
#include <charconv>

namespace lab {

namespace {

std::string word(std::string_view text)
{
    return std::string(text);
}

std::string levelText(const char* name, double level)
{
    return level == 0 ? std::string() : std::string(" ") + name + ' ' + numberText(level);
}

} // namespace

std::string numberText(double number)
{
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

std::string textOf(const practice::Trade& trade)
{
    std::string text = word(toText(trade.status)) + ' ' + word(toText(trade.orderKind)) + ' '
        + word(toText(trade.side)) + ' ' + numberText(practice::toLots(trade.lots)) + ' ' + trade.symbol
        + " (" + trade.id + ')';
    text += levelText("entry", trade.entryPrice) + levelText("exit", trade.exitPrice)
        + levelText("trigger", trade.pendingPrice) + levelText("SL", trade.stopLoss)
        + levelText("TP", trade.takeProfit);
    text += ", result " + practice::moneyText(trade.pnl) + ", margin " + practice::moneyText(trade.margin)
        + ", swap " + practice::moneyText(trade.swap) + ", commission "
        + practice::moneyText(trade.commission);
    if (trade.closeReason != practice::CloseReason::None)
        text += ", " + word(toText(trade.closeReason));
    return text;
}

std::string textOf(const practice::Account& account)
{
    return "account " + account.id + ": " + word(toText(account.status)) + ", balance "
        + practice::moneyText(account.balance) + ", phase " + std::to_string(account.phase) + ", day's start "
        + practice::moneyText(account.dayStartEquity);
}

std::string textOf(const practice::TradeCommand& command)
{
    if (const auto* order = std::get_if<practice::PlaceRequest>(&command)) {
        const std::string kind = order->orderKind == "MARKET" ? order->type : order->orderKind;
        return kind + ' ' + numberText(order->lots) + ' ' + order->symbol
            + levelText("at", order->pendingPrice.value_or(0)) + levelText("SL", order->stopLoss.value_or(0))
            + levelText("TP", order->takeProfit.value_or(0));
    }
    if (const auto* close = std::get_if<practice::CloseCommand>(&command))
        return "close " + close->tradeId;
    if (const auto* cancel = std::get_if<practice::CancelCommand>(&command))
        return "cancel " + cancel->tradeId;
    return "modify " + std::get<practice::ModifyCommand>(command).tradeId;
}

} // namespace lab
