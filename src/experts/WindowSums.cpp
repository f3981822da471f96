#include "experts/WindowSums.h"

#include <utility>

template <WindowSums::Kind kind>
void WindowSums::add(Moves& sums, const ExpertCandles& candles, std::size_t index)
{
    const double close = candles.price(index, &Candle::close);
    if constexpr (kind == Kind::Closes) {
        sums.gains += close;
    } else {
        const double move = close - candles.price(index - 1, &Candle::close);
        if (move > 0.0)
            sums.gains += move;
        else
            sums.losses -= move;
    }
}

double WindowSums::closes(
    const ExpertCandles& candles, std::optional<quint64> revision, std::size_t first, std::size_t last)
{
    return sum<Kind::Closes>(candles, revision, first, last).gains;
}

WindowSums::Moves WindowSums::moves(
    const ExpertCandles& candles, std::optional<quint64> revision, std::size_t first, std::size_t last)
{
    return sum<Kind::Moves>(candles, revision, first, last);
}

template <WindowSums::Kind kind>
WindowSums::Moves WindowSums::sum(
    const ExpertCandles& candles, std::optional<quint64> revision, std::size_t first, std::size_t last)
{
    const auto addAll = [&](std::size_t end) {
        Moves sums;
        for (std::size_t i = first; i < end; ++i)
            add<kind>(sums, candles, i);
        return sums;
    };
    if (!revision)
        return addAll(last + 1);
    if (std::exchange(m_revision, *revision) != *revision) {
        for (Entry& entry : m_entries)
            entry.kind = Kind::None;
    }

    // The newest candle moves with every tick.
    const bool newest = last + 1 == candles.size();
    const std::size_t end = newest ? last : last + 1;
    for (const Entry& entry : m_entries) {
        if (entry.kind == kind && entry.first == first && entry.end == end) {
            Moves sums = entry.sums;
            if (newest)
                add<kind>(sums, candles, last);
            return sums;
        }
    }
    Moves sums = addAll(end);
    m_entries[m_oldest] = {kind, first, end, sums};
    m_oldest = (m_oldest + 1) % m_entries.size();
    if (newest)
        add<kind>(sums, candles, last);
    return sums;
}
