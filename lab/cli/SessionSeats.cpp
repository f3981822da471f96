#include "lab/cli/SessionSeats.h"

#include "lab/core/session/SessionFile.h"

#include <algorithm>
#include <set>
#include <utility>

namespace lab {

namespace {

using Chart = std::pair<std::string, practice::Timeframe>;

/// What happened in a session, as far as scripts can have had a hand in it.
struct Cast {
    std::set<Chart> charts;
    std::set<std::string> accounts;                       ///< whose positions were read
    std::set<std::pair<std::string, std::string>> orders; ///< symbol and account of each
    bool isOrderedOn(const Chart& chart) const
    {
        return std::ranges::any_of(
            orders, [&chart](const auto& order) { return order.first == chart.first; });
    }
};

Cast castOf(const std::filesystem::path& path)
{
    Cast cast;
    SessionFile session(path);
    while (const std::optional<SessionEvent> event = session.next()) {
        if (const auto* bars = std::get_if<BarsEvent>(&event->what))
            cast.charts.emplace(bars->symbol, bars->timeframe);
        else if (const auto* positions = std::get_if<PositionsEvent>(&event->what))
            cast.accounts.insert(positions->accountId);
        else if (const auto* command = std::get_if<CommandEvent>(&event->what)) {
            const auto* order = std::get_if<practice::PlaceRequest>(&command->command);
            if (order && order->orderKind == "MARKET")
                cast.orders.emplace(order->symbol, order->accountId);
        }
    }
    return cast;
}

std::string chartText(const Chart& chart)
{
    return chart.first + ',' + std::string(practice::timeframeKey(chart.second));
}

Chart chooseChart(const Options& options, const Cast& cast)
{
    std::vector<Chart> charts;
    std::string names;
    for (const Chart& chart : cast.charts) {
        names += (names.empty() ? "" : ", ") + chartText(chart);
        if ((options.settings.symbol.empty() || options.settings.symbol == chart.first)
            && (!options.hasTimeframe || options.settings.timeframe == chart.second))
            charts.push_back(chart);
    }
    if (cast.charts.empty())
        throw UsageError(options.session.string() + ": no chart was opened in this session");
    if (charts.empty())
        throw UsageError("the session has no such chart; there are " + names);
    if (charts.size() > 1 && std::ranges::any_of(charts, [&](const Chart& c) { return cast.isOrderedOn(c); }))
        std::erase_if(charts, [&](const Chart& chart) { return !cast.isOrderedOn(chart); });
    if (charts.size() > 1)
        throw UsageError("which chart? --symbol and --timeframe choose from " + names);
    return charts.front();
}

std::string chooseAccount(const Options& options, const Cast& cast, const std::string& symbol)
{
    if (!options.account.empty())
        return options.account;
    std::set<std::string> accounts;
    for (const auto& [orderedSymbol, account] : cast.orders) {
        if (orderedSymbol == symbol)
            accounts.insert(account);
    }
    if (accounts.empty())
        accounts = cast.accounts;
    if (accounts.size() == 1)
        return *accounts.begin();
    std::string names;
    for (const std::string& account : accounts)
        names += (names.empty() ? "" : ", ") + account;
    throw UsageError(names.empty() ? "no account was looked at in this session; --account names one"
                                   : "which account? --account takes one of " + names);
}

} // namespace

SessionSeat chooseSeat(const Options& options)
{
    const Cast cast = castOf(options.session);
    const Chart chart = chooseChart(options, cast);
    return {chart.first, chart.second, chooseAccount(options, cast, chart.first), options.settings.from,
        options.settings.to};
}

} // namespace lab
