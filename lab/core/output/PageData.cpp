#include "lab/core/figures/DrawdownSpans.h"
#include "lab/core/figures/ReportSeries.h"
#include "lab/core/output/PageParts.h"
#include "lab/core/output/RunWords.h"
#include "lab/core/output/Texts.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

namespace lab {

namespace {

constexpr std::size_t curvePoints = 2'000;

std::int64_t secondOf(practice::TimeMs time)
{
    return practice::floorDivide(time, 1'000);
}

/// A list of values that are made one by one.
template <typename Text> std::string list(std::size_t count, Text&& textOf)
{
    std::string json = "[";
    for (std::size_t number = 0; number < count; ++number) {
        if (number > 0)
            json += ',';
        json += textOf(number);
    }
    return json + "]";
}

/// Whole numbers as their differences, which are short.
template <typename Value> std::string differences(std::size_t count, Value&& valueOf)
{
    std::int64_t former = 0;
    return list(count, [&](std::size_t number) {
        const std::int64_t value = valueOf(number);
        const std::int64_t difference = value - former;
        former = value;
        return std::to_string(difference);
    });
}

std::string equityData(const RunResult& result)
{
    const std::vector<EquityPoint>& points = result.equity;
    std::vector<double> curve(points.size());
    std::transform(points.begin(), points.end(), curve.begin(),
        [](const EquityPoint& point) { return static_cast<double>(point.equity); });
    std::vector<std::size_t> places = thinned(curve, curvePoints / 2);
    std::transform(points.begin(), points.end(), curve.begin(),
        [](const EquityPoint& point) { return static_cast<double>(point.balance); });
    const std::vector<std::size_t> others = thinned(curve, curvePoints / 2);
    places.insert(places.end(), others.begin(), others.end());
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    const auto at = [&](std::size_t number) -> const EquityPoint& { return points[places[number]]; };
    return "{\"t\":"
        + differences(places.size(), [&](std::size_t number) { return secondOf(at(number).time); })
        + ",\"balance\":"
        + list(places.size(), [&](std::size_t number) { return practice::decimalText(at(number).balance); })
        + ",\"equity\":"
        + list(places.size(), [&](std::size_t number) { return practice::decimalText(at(number).equity); })
        + '}';
}

/// What lies between the equity's points: how low it was on each day, from the day's beginning on.
std::string lowsData(const RunResult& result)
{
    const std::vector<DayRow>& days = result.days;
    std::vector<double> curve(days.size());
    std::transform(days.begin(), days.end(), curve.begin(),
        [](const DayRow& day) { return static_cast<double>(day.lowestEquity); });
    const std::vector<std::size_t> places = thinned(curve, curvePoints);
    const auto timeOf = [&](std::size_t number) {
        const practice::TimeMs midnight = practice::TimeMs{days[places[number]].day} * practice::dayMs;
        return secondOf(std::max(midnight, result.equity.front().time));
    };
    return "{\"t\":" + differences(places.size(), timeOf) + ",\"low\":"
        + list(places.size(),
            [&](std::size_t number) { return practice::decimalText(days[places[number]].lowestEquity); })
        + '}';
}

std::string drawdownData(const RunResult& result)
{
    const std::vector<double> curve = drawdownCurve(result.equity);
    const std::vector<std::size_t> places = thinned(curve, curvePoints);
    return "{\"t\":"
        + differences(
            places.size(), [&](std::size_t number) { return secondOf(result.equity[places[number]].time); })
        + ",\"fall\":"
        + list(places.size(), [&](std::size_t number) { return fixedText(-100 * curve[places[number]], 3); })
        + '}';
}

std::string barsData(const RunResult& result, std::size_t most)
{
    const std::vector<BarRow> bars = joinedBars(result.chart, most);
    const double scale = std::pow(10, result.digits);
    const auto points = [scale](double price) {
        const double value = price * scale;
        return std::isfinite(value) && std::abs(value) < 1e15 ? std::llround(value) : 0LL;
    };
    const auto closeOf = [&](std::size_t number) { return std::int64_t{points(bars[number].close)}; };
    return "{\"t\":"
        + differences(bars.size(), [&](std::size_t number) { return secondOf(bars[number].time); })
        + ",\"close\":" + differences(bars.size(), closeOf) + ",\"open\":"
        + list(bars.size(),
            [&](std::size_t number) { return std::to_string(points(bars[number].open) - closeOf(number)); })
        + ",\"high\":"
        + list(bars.size(),
            [&](std::size_t number) { return std::to_string(points(bars[number].high) - closeOf(number)); })
        + ",\"low\":"
        + list(bars.size(),
            [&](std::size_t number) { return std::to_string(closeOf(number) - points(bars[number].low)); })
        + '}';
}

std::string tradesData(const RunResult& result, std::size_t most)
{
    const auto trades = std::span(result.trades).last(std::min(result.trades.size(), most));
    return list(trades.size(), [&](std::size_t number) {
        const TradeRow& trade = trades[number];
        return '[' + std::to_string(trade.ticket) + (trade.side == practice::Side::Buy ? ",1," : ",0,")
            + std::to_string(secondOf(trade.openTime)) + ','
            + fixedText(trade.openPrice, digitsOf(trade, result)) + ','
            + std::to_string(secondOf(trade.closeTime)) + ','
            + fixedText(trade.closePrice, digitsOf(trade, result)) + ',' + practice::decimalText(trade.net())
            + ']';
    });
}

} // namespace

std::string pageData(const RunResult& result, const PageLimits& limits)
{
    std::string json = "{\"digits\":" + std::to_string(std::clamp(result.digits, 0, 10));
    if (result.equity.size() > 1)
        json += ",\"equity\":" + equityData(result) + ",\"drawdown\":" + drawdownData(result);
    if (result.equity.size() > 1 && !result.closedTradesOnly)
        json += ",\"lows\":" + lowsData(result);
    if (!result.chart.empty())
        json += ",\"bars\":" + barsData(result, limits.bars);
    return json + ",\"trades\":" + tradesData(result, limits.drawnTrades) + '}';
}

} // namespace lab
