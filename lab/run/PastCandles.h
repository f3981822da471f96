#pragma once

#include "chart/series/CandleSeries.h"
#include "experts/ExpertCandles.h"
#include "practice/core/Types.h"

#include <functional>
#include <vector>

namespace lab {

/// The candles that the chart of a long run keeps no longer. Hardly any script looks at them: those that one
/// asks for are made again, a block of neighbours at a time, and kept from then on.
class PastCandles final : public OlderCandles {
public:
    /// Makes so many candles, all of them finished, from the one that begins at `time` on: the same as were
    /// taken away.
    using Maker = std::function<std::vector<Candle>(practice::TimeMs time, std::size_t count)>;

    static constexpr std::size_t usualBlock = 16'384;

    /// `block`: candles at a time.
    explicit PastCandles(Maker make, std::size_t block = usualBlock)
        : m_make(std::move(make))
        , m_block(block)
    {
    }

    /// Takes the oldest candles away from a series of three blocks or more, and leaves two. For a series that
    /// has nothing done to it but this and the folding of ticks.
    void relieve(CandleSeries& series)
    {
        while (series.candles().size() >= 3 * m_block)
            takeFrom(series);
    }

    [[nodiscard]] const Candle& at(std::size_t number) override;

private:
    struct Block {
        practice::TimeMs begin = 0;
        std::vector<Candle> candles; ///< empty until one is asked for
    };

    void takeFrom(CandleSeries& series);

    Maker m_make;
    std::size_t m_block;
    std::vector<Block> m_blocks;
};

} // namespace lab
