#include "lab/run/PastCandles.h"

namespace lab {

const Candle& PastCandles::at(std::size_t number)
{
    Block& block = m_blocks[number / m_block];
    if (block.candles.empty())
        block.candles = m_make(block.begin, m_block);
    if (block.candles.size() != m_block)
        qFatal("Candles of a run cannot be made again");
    return block.candles[number % m_block];
}

void PastCandles::takeFrom(CandleSeries& series)
{
    const std::vector<Candle>& candles = series.candles();
    m_blocks.push_back({candles.front().time, {}});
    setCount(m_blocks.size() * m_block);
    series.setCandles({candles.begin() + static_cast<std::ptrdiff_t>(m_block), candles.end()});
}

} // namespace lab
