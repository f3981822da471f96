#include "scenes/Series.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cmath>

std::vector<Candle> walk(std::size_t count)
{
    constexpr qint64 bar = 900'000;
    constexpr qint64 end = 1'700'000'100'000 / bar * bar;
    constexpr double point = 0.00001;
    QRandomGenerator random(42);
    const auto step = [&random] { return (random.bounded(81) - 40) * point; };

    std::vector<Candle> candles(count);
    double price = 1.1;
    for (std::size_t i = 0; i < count; ++i) {
        Candle& candle = candles[i];
        candle.time = end - static_cast<qint64>(count - 1 - i) * bar;
        candle.open = price;
        // Drawn back to where it began, so that a long walk stays a plausible price.
        price += step() + (1.1 - price) * 0.001;
        candle.close = price;
        candle.high = std::max(candle.open, candle.close) + std::abs(step());
        candle.low = std::min(candle.open, candle.close) - std::abs(step());
        candle.volume = 50 + static_cast<qint32>(random.bounded(500));
    }
    return candles;
}

std::vector<Candle> newestOf(std::size_t count)
{
    static const std::vector<Candle> all = walk(1'000'000);
    return {all.end() - static_cast<std::ptrdiff_t>(std::min(count, all.size())), all.end()};
}
