#include "lab/core/output/ResultFiles.h"

#include "lab/core/output/RunWords.h"
#include "lab/core/output/Texts.h"

namespace lab {

namespace {

using practice::decimalText;

/// A field of a line; quoted where it would not be one otherwise.
std::string field(std::string_view text)
{
    std::string line = oneLine(text);
    if (line.find_first_of(",\"") == std::string::npos)
        return line;
    for (std::size_t place = 0; (place = line.find('"', place)) != std::string::npos; place += 2)
        line.insert(place, 1, '"');
    return '"' + line + '"';
}

std::string levelText(double level, int digits)
{
    return level == 0 ? std::string() : fixedText(level, digits);
}

void addTrade(std::string& csv, const RunResult& result, const TradeRow& trade)
{
    const int digits = digitsOf(trade, result);
    csv += std::to_string(trade.ticket) + ',' + field(symbolOf(trade, result)) + ',';
    csv += sideText(trade.side);
    csv += ',' + decimalText(trade.lots) + ',' + isoTime(trade.openTime) + ','
        + fixedText(trade.openPrice, digits) + ',' + isoTime(trade.closeTime) + ','
        + fixedText(trade.closePrice, digits) + ',' + levelText(trade.stopLoss, digits) + ','
        + levelText(trade.takeProfit, digits) + ',' + decimalText(trade.profit) + ','
        + decimalText(trade.commission) + ',' + decimalText(trade.swap) + ',' + decimalText(trade.net())
        + ',';
    csv += reasonText(trade.reason);
    csv += result.closedTradesOnly ? ",,,\n"
                                   : ',' + decimalText(trade.worst) + ',' + decimalText(trade.best)
            + (trade.ambiguous ? ",1\n" : ",0\n");
}

} // namespace

std::string tradesCsv(const RunResult& result)
{
    std::string csv
        = "ticket,symbol,side,lots,openTime,openPrice,closeTime,closePrice,stopLoss,takeProfit,profit,"
          "commission,swap,net,reason,mae,mfe,ambiguous\n";
    for (const TradeRow& trade : result.trades)
        addTrade(csv, result, trade);
    return csv;
}

std::string equityCsv(const RunResult& result)
{
    std::string csv = "time,balance,equity\n";
    for (const EquityPoint& point : result.equity)
        csv += isoTime(point.time) + ',' + decimalText(point.balance) + ',' + decimalText(point.equity)
            + '\n';
    return csv;
}

std::string dailyCsv(const RunResult& result)
{
    std::string csv = "date,balance,equity\n";
    if (result.days.empty())
        return csv;
    const std::string start = decimalText(result.startBalance);
    csv += isoDate(std::int64_t{result.days.front().day} - 1) + ',' + start + ',' + start + '\n';
    for (const DayRow& day : result.days)
        csv += isoDate(day.day) + ',' + decimalText(day.balance) + ',' + decimalText(day.equity) + '\n';
    return csv;
}

std::string journalText(const RunResult& result)
{
    std::string text;
    for (const JournalLine& line : result.journal)
        text += isoTime(line.time) + ' ' + oneLine(line.text) + '\n';
    return text;
}

} // namespace lab
