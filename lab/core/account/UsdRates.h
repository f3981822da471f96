#pragma once

#include "lab/core/account/PointQuote.h"
#include "lab/core/market/MinuteHistory.h"
#include "practice/core/broker/CurrencyConverter.h"
#include "practice/core/broker/Requests.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lab {

/// The symbols of these histories, in their order.
[[nodiscard]] std::vector<practice::SymbolSpec> specsOf(const std::vector<const MinuteHistory*>& histories);

/// The price of the pair that turns a symbol's results into USD: at each moment its last close, or its open
/// within the very first minute that it has; never a price that is still to come.
class UsdRates final {
public:
    /// The results of the first of these histories are to be turned. All outlive this.
    explicit UsdRates(const std::vector<const MinuteHistory*>& histories);

    /// Moves on to this moment, or back.
    void moveTo(practice::TimeMs time)
    {
        if (m_pair && (time < m_validFrom || time >= m_validTo))
            look(time);
    }

    /// USD for one unit of the profit currency while the symbol itself stands at `quote`; nothing without the
    /// pair or before its first minute.
    [[nodiscard]] std::optional<practice::Rate> rate(const PointQuote& quote) const;

    /// The pair's price for the broker, bid and ask both at its mid; nothing where no other symbol is needed.
    [[nodiscard]] std::optional<practice::SymbolQuote> pairQuote() const;

private:
    void look(practice::TimeMs time);

    practice::CurrencyConverter m_converter;
    std::string m_currency;
    const MinuteHistory* m_pair = nullptr; ///< another symbol's; none where none is needed or given
    std::size_t m_pairNumber = 0;          ///< of the symbol, by which the broker knows it
    std::optional<std::int64_t> m_mid;     ///< of the pair, in points
    practice::TimeMs m_validFrom = 0;
    practice::TimeMs m_validTo = 0;
};

} // namespace lab
