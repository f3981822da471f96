#include "lab/core/figures/DrawdownSpans.h"

#include <algorithm>

namespace lab {

namespace {

double fractionBelow(practice::Cents peak, practice::Cents value)
{
    return static_cast<double>(peak - value) / static_cast<double>(peak);
}

} // namespace

std::vector<DrawdownSpan> drawdownSpans(const RunResult& result)
{
    std::vector<DrawdownSpan> spans;
    if (result.days.empty() || result.startBalance <= 0)
        return spans;
    practice::Cents peak = result.startBalance;
    std::int32_t peakDay = result.days.front().day - 1;
    bool isBelow = false;
    for (const DayRow& day : result.days) {
        if (day.equity >= peak) {
            if (isBelow) {
                spans.back().recoveredDay = day.day;
                spans.back().days = day.day - peakDay;
            }
            isBelow = false;
            peak = day.equity;
            peakDay = day.day;
            continue;
        }
        if (!isBelow)
            spans.emplace_back();
        isBelow = true;
        DrawdownSpan& span = spans.back();
        span.peakDay = peakDay;
        span.days = day.day - peakDay;
        const double depth = fractionBelow(peak, day.equity);
        if (depth > span.depth) {
            span.depth = depth;
            span.bottomDay = day.day;
        }
    }
    return spans;
}

std::vector<DrawdownSpan> worstDrawdowns(const RunResult& result, std::size_t most)
{
    std::vector<DrawdownSpan> spans = drawdownSpans(result);
    std::stable_sort(spans.begin(), spans.end(),
        [](const DrawdownSpan& one, const DrawdownSpan& other) { return one.depth > other.depth; });
    spans.resize(std::min(spans.size(), most));
    return spans;
}

std::vector<double> drawdownCurve(std::span<const EquityPoint> equity)
{
    std::vector<double> curve;
    curve.reserve(equity.size());
    practice::Cents peak = 0;
    for (const EquityPoint& point : equity) {
        peak = std::max(peak, point.equity);
        curve.push_back(peak > 0 ? fractionBelow(peak, point.equity) : 0);
    }
    return curve;
}

} // namespace lab
