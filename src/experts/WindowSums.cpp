#include "experts/WindowSums.h"

#include <utility>

namespace {

void addClose(WindowSums::Moves& sums, const std::vector<Candle>& candles, std::size_t index)
{
    sums.gains += candles[index].close;
}

void addMove(WindowSums::Moves& sums, const std::vector<Candle>& candles, std::size_t index)
{
    const double move = candles[index].close - candles[index - 1].close;
    if (move > 0.0)
        sums.gains += move;
    else
        sums.losses -= move;
}

} // namespace

double WindowSums::closes(
    const std::vector<Candle>& candles, std::optional<quint64> revision, std::size_t first, std::size_t last)
{
    return sum(Kind::Closes, &addClose, candles, revision, first, last).gains;
}

WindowSums::Moves WindowSums::moves(
    const std::vector<Candle>& candles, std::optional<quint64> revision, std::size_t first, std::size_t last)
{
    return sum(Kind::Moves, &addMove, candles, revision, first, last);
}

WindowSums::Moves WindowSums::sum(Kind kind, Summation add, const std::vector<Candle>& candles,
    std::optional<quint64> revision, std::size_t first, std::size_t last)
{
    const auto addAll = [&](std::size_t end) {
        Moves sums;
        for (std::size_t i = first; i < end; ++i)
            add(sums, candles, i);
        return sums;
    };
    if (!revision)
        return addAll(last + 1);
    if (std::exchange(m_revision, *revision) != *revision)
        m_entries.fill({});

    // The newest candle moves with every tick.
    const bool newest = last + 1 == candles.size();
    const std::size_t end = newest ? last : last + 1;
    for (const Entry& entry : m_entries) {
        if (entry.kind == kind && entry.first == first && entry.end == end) {
            Moves sums = entry.sums;
            if (newest)
                add(sums, candles, last);
            return sums;
        }
    }
    Moves sums = addAll(end);
    m_entries[m_oldest] = {kind, first, end, sums};
    m_oldest = (m_oldest + 1) % m_entries.size();
    if (newest)
        add(sums, candles, last);
    return sums;
}
