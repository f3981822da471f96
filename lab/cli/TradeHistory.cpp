#include "lab/cli/TradeHistory.h"

#include "lab/cli/OptionValues.h"
#include "lab/cli/ResultCheck.h"
#include "lab/cli/UsageError.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <map>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

namespace lab {

namespace {

using nlohmann::json;
using practice::Cents;
using practice::TimeMs;

/// The platform sends no more rows than this at a time.
constexpr std::size_t mostRows = 5000;

/// A report has a row for each day, so a damaged date must not make millions of them.
constexpr int mostYears = 100;

/// One row of the reply; what() of its errors is put behind its place.
class RowReader {
public:
    RowReader(const json& row, std::string place)
        : m_row(row)
        , m_place(std::move(place))
    {
        if (!row.is_object())
            fail("is no record");
    }

    [[nodiscard]] std::string text(const char* key) const
    {
        const auto found = m_row.find(key);
        return found != m_row.end() && found->is_string() ? found->get<std::string>() : std::string();
    }

    /// Numbers travel as such or as texts; nothing where there is none.
    [[nodiscard]] std::string numberText(const char* key) const
    {
        const auto found = m_row.find(key);
        if (found == m_row.end() || found->is_null())
            return {};
        if (found->is_number())
            return found->dump();
        if (!found->is_string())
            fail(std::string("has no number as ") + key);
        return found->get<std::string>();
    }

    [[nodiscard]] double number(const char* key, bool isNeeded = false) const
    {
        const std::string given = numberText(key);
        if (given.empty() && !isNeeded)
            return 0;
        const auto value = decimalNumber(given, -1e12, 1e12);
        if (!value)
            fail(std::string("has no number as ") + key);
        return *value;
    }

    [[nodiscard]] Cents money(const char* key, bool isNeeded = false) const
    {
        return practice::roundToCents(number(key, isNeeded) * 100);
    }

    [[nodiscard]] TimeMs time(const char* key, const char* otherKey) const
    {
        std::string given = text(key);
        if (given.empty())
            given = text(otherKey);
        const auto value = zonedMoment(given);
        if (!value)
            fail(std::string("has no time as ") + key);
        return *value;
    }

    [[noreturn]] void fail(const std::string& reason) const { throw UsageError(m_place + ' ' + reason); }

private:
    /// Any number of decimals, and Z, an offset such as +02:00, or neither of them behind it.
    static std::optional<TimeMs> zonedMoment(std::string given)
    {
        TimeMs offset = 0;
        const std::size_t size = given.size();
        if (size > 16 && given[size - 3] == ':' && (given[size - 6] == '+' || given[size - 6] == '-')) {
            const auto hours = wholeNumber(std::string_view(given).substr(size - 5, 2), 0, 23);
            const auto minutes = wholeNumber(std::string_view(given).substr(size - 2), 0, 59);
            if (!hours || !minutes)
                return std::nullopt;
            offset = static_cast<TimeMs>(*hours) * practice::hourMs
                + static_cast<TimeMs>(*minutes) * practice::minuteMs;
            offset = given[size - 6] == '-' ? -offset : offset;
            given.resize(size - 6);
        } else if (given.ends_with('Z')) {
            given.pop_back();
        }
        if (const std::size_t point = given.find('.'); point != std::string::npos)
            given.resize(point + 4, '0');
        const auto value = moment(given);
        return value ? std::optional(*value - offset) : std::nullopt;
    }

    const json& m_row;
    std::string m_place;
};

ExitReason reasonOf(const std::string& text)
{
    if (text == "SL")
        return ExitReason::StopLoss;
    if (text == "TP")
        return ExitReason::TakeProfit;
    if (text == "STOP_OUT")
        return ExitReason::Margin;
    if (text == "RISK")
        return ExitReason::Rule;
    return text == "MANUAL" ? ExitReason::Manual : ExitReason::Other;
}

int decimalsOf(const std::string& price)
{
    const std::size_t point = price.find('.');
    return point == std::string::npos ? 0
                                      : static_cast<int>(std::min<std::size_t>(price.size() - point - 1, 8));
}

/// What moved the balance without a trade.
struct Payment {
    TimeMs time = 0;
    Cents amount = 0;
};

/// What was read of a reply, before it becomes a result.
struct Reply {
    std::vector<TradeRow> trades;
    std::vector<Payment> payments;
    std::size_t rows = 0;
};

TradeRow tradeOf(const RowReader& row)
{
    TradeRow trade;
    const std::string side = row.text("type");
    if (side != "BUY" && side != "SELL")
        row.fail("is neither BUY nor SELL");
    trade.side = side == "BUY" ? practice::Side::Buy : practice::Side::Sell;
    trade.lots = std::llround(row.number("lotSize", true) * 100);
    trade.openTime = row.time("createdAt", "createdAt");
    trade.closeTime = std::max(row.time("closedAt", "updatedAt"), trade.openTime);
    trade.symbol = row.text("symbol");
    if (trade.symbol.empty())
        row.fail("has no symbol");
    trade.digits
        = std::max(decimalsOf(row.numberText("entryPrice")), decimalsOf(row.numberText("exitPrice")));
    trade.openPrice = row.number("entryPrice", true);
    trade.closePrice = row.number("exitPrice", true);
    trade.stopLoss = row.number("stopLoss");
    trade.takeProfit = row.number("takeProfit");
    trade.commission = row.money("commission");
    trade.swap = row.money("swap");
    // The platform's pnl is the net result.
    trade.profit = row.money("pnl", true) + trade.commission - trade.swap;
    trade.reason = reasonOf(row.text("closeReason"));
    return trade;
}

Reply read(std::string_view text, const std::string& name)
{
    const json document = json::parse(text, nullptr, false);
    if (!document.is_array())
        throw UsageError(name + ": is no list of trades in JSON");
    Reply reply;
    std::set<std::string> accounts;
    for (const json& entry : document) {
        const RowReader row(entry, name + ": row " + std::to_string(++reply.rows));
        accounts.insert(row.text("accountId"));
        if (row.text("orderKind") == "BALANCE") {
            reply.payments.push_back({row.time("createdAt", "closedAt"), row.money("pnl", true)});
        } else if (row.text("status") == "CLOSED") {
            reply.trades.push_back(tradeOf(row));
        }
    }
    if (accounts.size() > 1)
        throw UsageError(name + ": holds trades of several accounts");
    return reply;
}

/// The most decimals that a price of each symbol is written with.
std::map<std::string, int> digitsBySymbol(const std::vector<TradeRow>& trades)
{
    std::map<std::string, int> digits;
    for (const TradeRow& trade : trades)
        digits[trade.symbol] = std::max(digits[trade.symbol], trade.digits);
    return digits;
}

std::string namesOf(const std::map<std::string, int>& symbols)
{
    std::string names;
    for (const auto& [symbol, digits] : symbols)
        names += (names.empty() ? "" : ", ") + symbol;
    return names;
}

/// The trades of the symbol that is wished for, or all of them.
std::vector<TradeRow> chosenTrades(const Reply& reply, const std::string& wanted, const std::string& name)
{
    if (reply.trades.empty())
        throw UsageError(name + ": no closed trade");
    std::vector<TradeRow> trades = reply.trades;
    if (!wanted.empty())
        std::erase_if(trades, [&wanted](const TradeRow& trade) { return trade.symbol != wanted; });
    if (trades.empty())
        throw UsageError(
            name + ": no closed trade in " + wanted + "; there are " + namesOf(digitsBySymbol(reply.trades)));
    return trades;
}

Cents sumOf(const std::vector<Payment>& payments)
{
    Cents sum = 0;
    for (const Payment& payment : payments)
        sum += payment.amount;
    return sum;
}

/// Takes the payments before the first trade out of the others, where they and nothing else can have made the
/// balance at the start.
Cents takeDeposit(Reply& reply)
{
    const TimeMs first = std::ranges::min(reply.trades, {}, &TradeRow::openTime).openTime;
    const auto isLater = [first](const Payment& payment) { return payment.time >= first; };
    // Not the one of std::ranges, which the clang of the fuzz targets cannot read.
    const auto earlier = std::stable_partition(reply.payments.begin(), reply.payments.end(), isLater);
    const Cents deposit = sumOf({earlier, reply.payments.end()});
    if (deposit <= 0 || reply.rows >= mostRows)
        return 0;
    reply.payments.erase(earlier, reply.payments.end());
    return deposit;
}

std::int64_t dayOf(TimeMs time)
{
    return practice::floorDivide(time, practice::dayMs);
}

std::chrono::weekday weekdayOf(std::int64_t day)
{
    return std::chrono::weekday(std::chrono::sys_days(std::chrono::days(day)));
}

/// Which days had prices is not known: those of a week without its end, and those on which something
/// happened.
void addDays(RunResult& result)
{
    std::set<std::int64_t> eventful;
    for (const TradeRow& trade : result.trades) {
        for (const TimeMs time : {trade.openTime, trade.closeTime}) {
            eventful.insert(dayOf(time));
            result.weekendsTrade = result.weekendsTrade || weekdayOf(dayOf(time)) == std::chrono::Saturday;
        }
    }
    auto trade = result.trades.begin();
    Cents balance = result.startBalance;
    for (std::int64_t day = *eventful.begin(); day <= *eventful.rbegin(); ++day) {
        const std::chrono::weekday weekday = weekdayOf(day);
        const bool isWeekend = weekday == std::chrono::Saturday || weekday == std::chrono::Sunday;
        if (isWeekend && !result.weekendsTrade && !eventful.contains(day))
            continue;
        DayRow row{static_cast<std::int32_t>(day), balance, balance, balance, balance};
        for (; trade != result.trades.end() && dayOf(trade->closeTime) <= day; ++trade) {
            balance += trade->net();
            row.lowestEquity = std::min(row.lowestEquity, balance);
        }
        row.balance = row.equity = balance;
        result.days.push_back(row);
        result.equity.push_back({(day + 1) * practice::dayMs - 1, balance, balance});
    }
}

void addCurve(RunResult& result)
{
    Cents balance = result.startBalance;
    Cents peak = balance;
    result.equity.push_back({*result.settings.from, balance, balance});
    for (const TradeRow& trade : result.trades) {
        balance += trade.net();
        result.equity.push_back({trade.closeTime, balance, balance});
        peak = std::max(peak, balance);
        const Cents fall = peak - balance;
        result.balanceDrawdown.money = std::max(result.balanceDrawdown.money, fall);
        if (peak > 0)
            result.balanceDrawdown.fraction = std::max(
                result.balanceDrawdown.fraction, static_cast<double>(fall) / static_cast<double>(peak));
    }
    addDays(result);
    std::ranges::stable_sort(result.equity, {}, &EquityPoint::time);
    // A day may end behind the last trade.
    result.settings.to = std::max(*result.settings.to, result.equity.back().time + 1);
}

/// Time during which at least one of them was open.
TimeMs exposureOf(const std::vector<TradeRow>& byOpening)
{
    TimeMs exposed = 0;
    TimeMs end = byOpening.front().openTime;
    for (const TradeRow& trade : byOpening) {
        exposed += std::max<TimeMs>(trade.closeTime - std::max(trade.openTime, end), 0);
        end = std::max(end, trade.closeTime);
    }
    return exposed;
}

} // namespace

RunResult resultOfTrades(std::string_view text, const std::string& name, const TradeHistoryWish& wish)
{
    Reply reply = read(text, name);
    RunResult result;
    result.closedTradesOnly = true;
    result.trades = chosenTrades(reply, wish.symbol, name);
    const std::map<std::string, int> symbols = digitsBySymbol(result.trades);
    result.settings.symbol = namesOf(symbols);
    result.digits = symbols.begin()->second;
    for (TradeRow& trade : result.trades) {
        trade.digits = symbols.at(trade.symbol);
        if (symbols.size() == 1)
            trade.symbol.clear();
    }

    std::ranges::stable_sort(result.trades, {}, &TradeRow::openTime);
    int ticket = 0;
    for (TradeRow& trade : result.trades)
        trade.ticket = ++ticket;
    result.exposedMs = exposureOf(result.trades);
    result.settings.from = result.trades.front().openTime;
    std::ranges::stable_sort(result.trades, {}, &TradeRow::closeTime);
    result.settings.to = result.trades.back().closeTime + 1;
    if (*result.settings.to - *result.settings.from > mostYears * 366 * practice::dayMs)
        throw UsageError(name + ": covers more than " + std::to_string(mostYears) + " years");
    const Cents deposit = wish.balance ? 0 : takeDeposit(reply);
    result.startBalance = deposit > 0 ? deposit : wish.balance.value_or(result.settings.balance);
    result.settings.balance = result.startBalance;
    addCurve(result);

    std::vector<std::string>& warnings = result.warnings;
    warnings.emplace_back("Made of closed trades: what equity did while they were open is not known, nor the "
                          "falls in between. Figures by day follow the closings.");
    if (std::string contradiction = contradictionText(result); !contradiction.empty())
        warnings.push_back(std::move(contradiction));
    if (deposit > 0)
        warnings.emplace_back(practice::moneyText(deposit)
            + " USD were paid in before the first trade, and are taken as the balance at the start.");
    else if (!wish.balance)
        warnings.emplace_back("The history does not tell the balance at the start; "
            + practice::moneyText(result.startBalance) + " USD is assumed.");
    if (!reply.payments.empty())
        warnings.emplace_back("Payments are left out: " + std::to_string(reply.payments.size()) + ", "
            + practice::moneyText(sumOf(reply.payments)) + " USD together.");
    if (reply.rows >= mostRows)
        warnings.emplace_back("The history has as many rows as the platform sends at once; older trades may "
                              "be missing.");
    return result;
}

} // namespace lab
