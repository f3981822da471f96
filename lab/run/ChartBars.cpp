#include "lab/run/ChartBars.h"

namespace lab {

void ChartBars::add(const Candle& candle)
{
    const BarRow bar{candle.time, candle.open, candle.high, candle.low, candle.close};
    if (m_count++ % m_group != 0) {
        m_rows.back().join(bar);
        return;
    }
    if (m_rows.size() == most)
        joinPairs();
    m_rows.push_back(bar);
}

void ChartBars::joinPairs()
{
    static_assert(most % 2 == 0);
    for (std::size_t pair = 0; pair < most / 2; ++pair) {
        m_rows[pair] = m_rows[2 * pair];
        m_rows[pair].join(m_rows[2 * pair + 1]);
    }
    m_rows.resize(most / 2);
    m_group *= 2;
}

} // namespace lab
