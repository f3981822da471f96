#include "lab/core/figures/ReportSeries.h"

#include "lab/core/figures/DailyReturns.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace lab {

namespace {

using practice::Cents;

std::chrono::year_month_day dateOf(std::int32_t day)
{
    return std::chrono::year_month_day(std::chrono::sys_days(std::chrono::days(day)));
}

Figure changeFrom(Cents before, Cents after)
{
    if (before <= 0)
        return {};
    return finite(static_cast<double>(after - before) / static_cast<double>(before));
}

void count(TimeSlot& slot, const TradeRow& trade)
{
    ++slot.trades;
    slot.wins += trade.net() > 0 ? 1 : 0;
    slot.net += trade.net();
}

/// Borders of bins: multiples of 1, 2 or 5 times a power of ten.
class RoundBorders {
public:
    /// The narrowest width, from a hundred-thousandth of a per cent on, that is not below `least`.
    explicit RoundBorders(double least)
    {
        for (double decade = 1;; decade *= 10) {
            for (const double digit : {1.0, 2.0, 5.0}) {
                m_units = digit * decade;
                if (border(1) >= least)
                    return;
            }
        }
    }

    [[nodiscard]] double border(std::int64_t number) const
    {
        return static_cast<double>(number) * m_units / unitsInOne;
    }

    /// The number of the border that is the last at or below the value.
    [[nodiscard]] std::int64_t numberAt(double value) const
    {
        auto number = static_cast<std::int64_t>(std::floor(value / border(1)));
        while (value < border(number))
            --number;
        while (value >= border(number + 1))
            ++number;
        return number;
    }

private:
    static constexpr double unitsInOne = 1e7;
    double m_units = 1;
};

/// The places of the lowest and the highest value in [begin, end), in ascending order, each once.
void addExtremes(
    std::span<const double> curve, std::size_t begin, std::size_t end, std::vector<std::size_t>& places)
{
    std::size_t lowest = begin;
    std::size_t highest = begin;
    for (std::size_t place = begin + 1; place < end; ++place) {
        if (curve[place] < curve[lowest])
            lowest = place;
        if (curve[place] > curve[highest])
            highest = place;
    }
    places.push_back(std::min(lowest, highest));
    if (lowest != highest)
        places.push_back(std::max(lowest, highest));
}

} // namespace

std::vector<YearRow> monthlyTable(const RunResult& result)
{
    std::vector<YearRow> years;
    Cents beforeYear = result.startBalance;
    Cents beforeMonth = result.startBalance;
    Cents before = result.startBalance;
    std::size_t lastMonth = 0;
    for (const DayRow& day : result.days) {
        const auto date = dateOf(day.day);
        const auto month = static_cast<std::size_t>(static_cast<unsigned>(date.month()) - 1);
        const bool isNewYear = years.empty() || years.back().year != static_cast<int>(date.year());
        if (isNewYear) {
            years.push_back({.year = static_cast<int>(date.year()), .months = {}, .whole = {}});
            beforeYear = before;
        }
        if (isNewYear || month != lastMonth)
            beforeMonth = before;
        years.back().months[month] = changeFrom(beforeMonth, day.equity);
        years.back().whole = changeFrom(beforeYear, day.equity);
        lastMonth = month;
        before = day.equity;
    }
    return years;
}

std::vector<HistogramBin> returnHistogram(const RunResult& result)
{
    const std::vector<double> returns = dailyReturns(result).values;
    if (returns.empty())
        return {};
    const auto [least, most] = std::minmax_element(returns.begin(), returns.end());
    const double wanted = std::clamp(std::floor(std::sqrt(static_cast<double>(returns.size()))), 5.0, 40.0);
    const RoundBorders borders((*most - *least) / wanted);
    const std::int64_t first = borders.numberAt(*least);
    const std::int64_t last = borders.numberAt(*most);
    std::vector<HistogramBin> bins;
    for (std::int64_t number = first; number <= last; ++number)
        bins.push_back({.from = borders.border(number), .to = borders.border(number + 1)});
    for (const double value : returns)
        ++bins[static_cast<std::size_t>(borders.numberAt(value) - first)].count;
    return bins;
}

std::array<TimeSlot, 7> weekdayTable(const RunResult& result)
{
    std::array<TimeSlot, 7> table;
    for (const TradeRow& trade : result.trades) {
        const auto day = static_cast<std::int32_t>(practice::floorDivide(trade.openTime, practice::dayMs));
        const std::chrono::weekday weekday{std::chrono::sys_days(std::chrono::days(day))};
        count(table[weekday.iso_encoding() - 1], trade);
    }
    return table;
}

std::array<TimeSlot, 24> hourTable(const RunResult& result)
{
    std::array<TimeSlot, 24> table;
    for (const TradeRow& trade : result.trades) {
        const practice::TimeMs inDay
            = trade.openTime - practice::barStart(trade.openTime, practice::Timeframe::D1);
        count(table[static_cast<std::size_t>(inDay / practice::hourMs)], trade);
    }
    return table;
}

std::vector<ExcursionPoint> excursions(const RunResult& result, std::size_t most)
{
    std::vector<ExcursionPoint> points;
    const auto add = [&](const TradeRow& trade) {
        points.push_back(
            {.ticket = trade.ticket, .worst = trade.worst, .best = trade.best, .net = trade.net()});
    };
    const std::vector<TradeRow>& trades = result.trades;
    if (trades.size() <= most) {
        std::for_each(trades.begin(), trades.end(), add);
        return points;
    }
    const std::size_t groups = std::max<std::size_t>(most / 2, 1);
    for (std::size_t group = 0; group < groups; ++group) {
        const std::size_t begin = group * trades.size() / groups;
        const std::size_t end = (group + 1) * trades.size() / groups;
        std::size_t worst = begin;
        std::size_t best = begin;
        for (std::size_t place = begin + 1; place < end; ++place) {
            if (trades[place].worst < trades[worst].worst)
                worst = place;
            if (trades[place].best > trades[best].best)
                best = place;
        }
        add(trades[std::min(worst, best)]);
        if (worst != best)
            add(trades[std::max(worst, best)]);
    }
    return points;
}

std::vector<std::size_t> thinned(std::span<const double> curve, std::size_t most)
{
    std::vector<std::size_t> places;
    const std::size_t limit = std::max<std::size_t>(most, 4);
    if (curve.size() <= limit) {
        for (std::size_t place = 0; place < curve.size(); ++place)
            places.push_back(place);
        return places;
    }
    const std::size_t buckets = (limit - 2) / 2;
    const std::size_t inner = curve.size() - 2;
    places.push_back(0);
    for (std::size_t bucket = 0; bucket < buckets; ++bucket)
        addExtremes(curve, 1 + bucket * inner / buckets, 1 + (bucket + 1) * inner / buckets, places);
    places.push_back(curve.size() - 1);
    return places;
}

std::vector<BarRow> joinedBars(std::span<const BarRow> bars, std::size_t most)
{
    const std::size_t limit = std::max<std::size_t>(most, 1);
    const std::size_t group = (bars.size() + limit - 1) / limit;
    std::vector<BarRow> joined;
    for (std::size_t place = 0; place < bars.size(); ++place) {
        if (place % group == 0)
            joined.push_back(bars[place]);
        else
            joined.back().join(bars[place]);
    }
    return joined;
}

std::vector<ExitSum> exitSums(const RunResult& result)
{
    std::vector<ExitSum> sums;
    for (const ExitReason reason : {ExitReason::StopLoss, ExitReason::TakeProfit, ExitReason::Script,
             ExitReason::End, ExitReason::Margin, ExitReason::Rule, ExitReason::Manual, ExitReason::Other}) {
        ExitSum sum{reason, 0, 0};
        for (const TradeRow& trade : result.trades) {
            if (trade.reason != reason)
                continue;
            ++sum.trades;
            sum.net += trade.net();
        }
        if (sum.trades > 0)
            sums.push_back(sum);
    }
    return sums;
}

} // namespace lab
