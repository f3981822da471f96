#pragma once

#include "lab/core/session/SessionEvent.h"

#include <map>
#include <string>
#include <vector>

namespace lab {

/// An account as a terminal knew it: by what the platform had told it, and as late.
class ToldAccount final {
public:
    explicit ToldAccount(std::string id)
        : m_id(std::move(id))
    {
    }

    /// True when that was news of the account.
    bool take(const SessionEvent& event);

    /// In cents; 0 as long as nothing was told.
    [[nodiscard]] practice::Cents balance() const { return m_balance; }
    [[nodiscard]] practice::Cents equity() const;
    /// The ids of the open positions on a symbol, in the list's order.
    [[nodiscard]] std::vector<std::string> positionsOn(const std::string& symbol) const;
    /// When it was last told something; 0: never.
    [[nodiscard]] practice::TimeMs toldAt() const { return m_toldAt; }

private:
    bool takeBalances(const BalancesEvent& told);
    bool takePositions(const PositionsEvent& told);
    bool takeResults(const ResultsEvent& told);

    std::string m_id;
    practice::Cents m_balance = 0;
    std::map<std::string, practice::Cents> m_results;
    std::vector<ToldPosition> m_read; ///< counts when the orders have been read too
    std::vector<ToldPosition> m_positions;
    practice::TimeMs m_toldAt = 0;
};

} // namespace lab
