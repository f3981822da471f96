#pragma once

#include <QColor>
#include <QString>
#include <QStringList>

#include <initializer_list>

class QJsonObject;

/// The texts and colours of trade records in lists. Pure: no list, no window.
namespace tradeCells {

enum TradeColumn {
    TradeSymbol,
    TradeTicket,
    TradeTime,
    TradeType,
    TradeVolume,
    TradePrice,
    TradeStopLoss,
    TradeTakeProfit,
    TradeCurrentPrice,
    TradeCommission,
    TradeSwap,
    TradeProfit,
    TradeColumnCount
};

enum HistoryColumn {
    HistorySymbol,
    HistoryTicket,
    HistoryOpenTime,
    HistoryType,
    HistoryVolume,
    HistoryOpenPrice,
    HistoryStopLoss,
    HistoryTakeProfit,
    HistoryCloseTime,
    HistoryClosePrice,
    HistoryCommission,
    HistorySwap,
    HistoryProfit,
    HistoryColumnCount
};

/// The columns of the Trade and the History list that hold numbers; these stand at the right.
inline constexpr std::initializer_list<int> tradeNumbers{TradeVolume, TradePrice, TradeStopLoss,
    TradeTakeProfit, TradeCurrentPrice, TradeCommission, TradeSwap, TradeProfit};
inline constexpr std::initializer_list<int> historyNumbers{HistoryVolume, HistoryOpenPrice, HistoryStopLoss,
    HistoryTakeProfit, HistoryClosePrice, HistoryCommission, HistorySwap, HistoryProfit};

/// "buy limit" for a pending kind, else the side: "buy", "sell".
[[nodiscard]] QString typeLabel(const QJsonObject& trade);

/// Blue for a trade of the type "BUY", red for any other.
[[nodiscard]] QColor typeColor(const QJsonObject& trade);

/// An ISO 8601 time as "yyyy.MM.dd HH:mm:ss" in the zone that it states; empty when it is no time.
[[nodiscard]] QString timeText(const QString& iso);

/// Blue above 0, red below, neutral at 0.
[[nodiscard]] QColor profitColor(double profit);

/// The cells of an open or pending trade, current price left empty. `digits` is clamped.
[[nodiscard]] QStringList tradeTexts(const QJsonObject& trade, int digits);

/// The cells of a closed trade.
[[nodiscard]] QStringList historyTexts(const QJsonObject& trade, int digits);

} // namespace tradeCells
