#include "lab/core/account/UsdRates.h"

#include <cstddef>
#include <limits>

namespace lab {
using practice::TimeMs;

std::vector<practice::SymbolSpec> specsOf(const std::vector<const MinuteHistory*>& histories)
{
    std::vector<practice::SymbolSpec> specs;
    specs.reserve(histories.size());
    for (const MinuteHistory* history : histories)
        specs.push_back(history->spec);
    return specs;
}

UsdRates::UsdRates(const std::vector<const MinuteHistory*>& histories)
    : m_converter(specsOf(histories))
    , m_currency(histories.front()->spec.profitCurrency)
{
    const std::optional<std::size_t> pair = m_converter.pairFor(m_currency);
    if (!pair || *pair == 0)
        return;
    m_pair = histories[*pair];
    m_pairNumber = *pair;
}

std::optional<practice::Rate> UsdRates::rate(const PointQuote& quote) const
{
    return m_converter.usdPerUnit(m_currency, [&](std::size_t symbol) -> std::optional<std::int64_t> {
        if (symbol == 0)
            return quote.bid + quote.ask;
        return m_mid ? std::optional(2 * *m_mid) : std::nullopt;
    });
}

std::optional<practice::SymbolQuote> UsdRates::pairQuote() const
{
    if (!m_pair || !m_mid)
        return std::nullopt;
    return practice::SymbolQuote{m_pairNumber, PointQuote{*m_mid, *m_mid}.toPrices(m_pair->spec.digits)};
}

void UsdRates::look(TimeMs time)
{
    const auto overAt = [this](std::size_t minute) { return m_pair->timeAt(minute) + practice::minuteMs; };
    const std::size_t size = m_pair->size();
    const std::size_t unfinished = m_pair->firstFrom(time - practice::minuteMs + 1);
    m_validTo = unfinished < size ? overAt(unfinished) : std::numeric_limits<TimeMs>::max();
    if (unfinished > 0) {
        m_mid = m_pair->at(unfinished - 1).bar.close;
        m_validFrom = overAt(unfinished - 1);
        return;
    }
    m_mid.reset();
    m_validFrom = std::numeric_limits<TimeMs>::min();
    if (size == 0)
        return;
    if (m_pair->timeAt(0) <= time) {
        m_mid = m_pair->at(0).bar.open;
        m_validFrom = m_pair->timeAt(0);
    } else {
        m_validTo = m_pair->timeAt(0);
    }
}

} // namespace lab
