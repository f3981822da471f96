#include "lab/core/session/ToldAccount.h"

#include <algorithm>

namespace lab {

bool ToldAccount::take(const SessionEvent& event)
{
    bool isNews = false;
    if (const auto* balances = std::get_if<BalancesEvent>(&event.what)) {
        isNews = takeBalances(*balances);
    } else if (const auto* positions = std::get_if<PositionsEvent>(&event.what)) {
        isNews = takePositions(*positions);
    } else if (const auto* results = std::get_if<ResultsEvent>(&event.what)) {
        isNews = takeResults(*results);
    } else if (const auto* orders = std::get_if<OrdersEvent>(&event.what);
               orders && orders->accountId == m_id) {
        m_positions = m_read;
        isNews = true;
    }
    if (isNews)
        m_toldAt = event.time;
    return isNews;
}

// The terminal forgets the results then, and reads the positions anew.
bool ToldAccount::takeBalances(const BalancesEvent& told)
{
    const auto own = std::ranges::find(told.balances, m_id, &std::pair<std::string, practice::Cents>::first);
    if (own == told.balances.end())
        return false;
    m_balance = own->second;
    m_results.clear();
    return true;
}

bool ToldAccount::takePositions(const PositionsEvent& told)
{
    if (told.accountId != m_id)
        return false;
    m_read = told.positions;
    m_results.clear();
    for (const ToldPosition& position : m_read)
        m_results[position.id] = position.pnl;
    return true;
}

bool ToldAccount::takeResults(const ResultsEvent& told)
{
    if (told.accountId != m_id)
        return false;
    for (const auto& [id, pnl] : told.results)
        m_results[id] = pnl;
    return true;
}

practice::Cents ToldAccount::equity() const
{
    practice::Cents equity = m_balance;
    for (const auto& [id, pnl] : m_results)
        equity += pnl;
    return equity;
}

std::vector<std::string> ToldAccount::positionsOn(const std::string& symbol) const
{
    std::vector<std::string> ids;
    for (const ToldPosition& position : m_positions) {
        if (position.symbol == symbol)
            ids.push_back(position.id);
    }
    return ids;
}

} // namespace lab
