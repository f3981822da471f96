#include "lab/core/figures/DrawdownSpans.h"
#include "lab/core/figures/ReportSeries.h"
#include "lab/core/output/FigureText.h"
#include "lab/core/output/MissingFigure.h"
#include "lab/core/output/PageParts.h"
#include "lab/core/output/Texts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace lab {

namespace {

constexpr std::array<std::string_view, 12> monthNames{
    "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<std::string_view, 7> dayNames{
    "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"};

std::string monthCell(const Figure& value)
{
    if (!value)
        return "<td></td>";
    return "<td" + std::string(signedCell(*value)) + '>' + typeset(groupedText(*value * 100, 2)) + "</td>";
}

/// A bar to the right of the middle, or to its left for a loss; `share` from -1 to 1.
std::string barCell(double share)
{
    const std::string width = fixedText(std::abs(share) * 50, 1) + '%';
    return "<td class=\"bar\"><span><i"
        + (share < 0 ? " class=\"down\" style=\"right:50%;width:" : std::string(" style=\"left:50%;width:"))
        + width + "\"></i></span></td>";
}

std::string slotTable(std::string_view caption, std::string_view head, std::span<const TimeSlot> slots,
    std::span<const std::string> names, double largest)
{
    std::string html = "<table>\n<caption>" + std::string(caption)
        + "</caption>\n<thead><tr><th scope=\"col\">" + std::string(head)
        + "</th><th scope=\"col\" class=\"n\">Trades</th><th scope=\"col\" class=\"n\">Wins</th>"
          "<th scope=\"col\" class=\"n\">Net</th><th scope=\"col\"><span "
          "hidden>Bar</span></th></tr></thead>\n<tbody>\n";
    for (std::size_t number = 0; number < slots.size(); ++number) {
        const TimeSlot& slot = slots[number];
        const auto net = static_cast<double>(slot.net);
        html += "<tr><th scope=\"row\" class=\"t\">" + names[number] + "</th><td class=\"n\">"
            + groupedText(static_cast<double>(slot.trades), 0) + "</td><td class=\"n\">";
        html += slot.trades > 0
            ? percentText(static_cast<double>(slot.wins) / static_cast<double>(slot.trades), 0)
            : missingMark("no trades");
        html += "</td><td" + std::string(signedCell(net)) + '>';
        html += slot.trades > 0 ? centsText(net) : missingMark("no trades");
        html += "</td>" + barCell(largest > 0 ? net / largest : 0) + "</tr>\n";
    }
    return html + "</tbody>\n</table>\n";
}

double largestNet(std::span<const TimeSlot> slots)
{
    double largest = 0;
    for (const TimeSlot& slot : slots)
        largest = std::max(largest, std::abs(static_cast<double>(slot.net)));
    return largest;
}

/// The balance that a run starts with counts as the day before; nobody has seen that day.
std::string peakText(std::int32_t day, const RunResult& result)
{
    const std::int32_t first = result.days.front().day;
    return day < first ? isoDate(first) + " (start)" : isoDate(day);
}

} // namespace

std::string monthsPart(const RunResult& result, const PageLimits& limits)
{
    const std::vector<YearRow> years = monthlyTable(result);
    if (years.empty())
        return "<p class=\"note\">No days with prices.</p>";
    const std::size_t count = std::min(years.size(), limits.texts);
    std::string html
        = "<div class=\"wide\"><table class=\"months\">\n<caption>Change of equity in per cent, by UTC "
          "month</caption>\n<thead><tr><th scope=\"col\">Year</th>";
    for (const std::string_view month : monthNames)
        html += "<th scope=\"col\">" + std::string(month) + "</th>";
    html += "<th scope=\"col\">Year</th></tr></thead>\n<tbody>\n";
    for (const YearRow& year : std::span(years).last(count)) {
        html += "<tr><th scope=\"row\">" + std::to_string(year.year) + "</th>";
        for (const Figure& month : year.months)
            html += monthCell(month);
        html += monthCell(year.whole) + "</tr>\n";
    }
    html += "</tbody>\n</table></div>";
    if (count < years.size())
        html += "\n<p class=\"note\">" + std::to_string(years.size() - count)
            + " earlier years are left out.</p>";
    return html;
}

std::string histogramPart(const RunResult& result)
{
    const std::vector<HistogramBin> bins = returnHistogram(result);
    std::size_t highest = 0;
    std::size_t days = 0;
    for (const HistogramBin& bin : bins) {
        highest = std::max(highest, bin.count);
        days += bin.count;
    }
    if (highest == 0)
        return "<p class=\"note\">No daily returns.</p>";
    std::string html = "<figure>\n<figcaption>Days by their return, "
        + groupedText(static_cast<double>(days), 0) + " in all; the highest column holds "
        + groupedText(static_cast<double>(highest), 0)
        + "</figcaption>\n<div class=\"columns\" role=\"img\" aria-label=\"Histogram of daily returns from "
        + percentText(bins.front().from) + " to " + percentText(bins.back().to) + "\">";
    for (const HistogramBin& bin : bins) {
        html += bin.from < 0 ? "<i class=\"down\"" : "<i";
        html += " style=\"height:"
            + fixedText(100.0 * static_cast<double>(bin.count) / static_cast<double>(highest), 1)
            + "%\" title=\"" + percentText(bin.from) + " to " + percentText(bin.to) + ": "
            + std::to_string(bin.count) + "\"></i>";
    }
    html += "</div>\n<div class=\"ends\"><span>" + percentText(bins.front().from) + "</span>";
    return html + "<span>" + percentText(bins.back().to) + "</span></div>\n</figure>";
}

std::string weekPart(const RunResult& result)
{
    if (result.trades.empty())
        return "<p class=\"note\">No trades.</p>";
    const std::array<TimeSlot, 7> days = weekdayTable(result);
    const std::array<TimeSlot, 24> hours = hourTable(result);
    std::vector<std::string> names(dayNames.begin(), dayNames.end());
    const bool isWeekendUsed = result.weekendsTrade || days[5].trades + days[6].trades > 0;
    std::string html = "<p class=\"note\">By the time of opening, UTC.</p>\n<div class=\"pair thirds\">\n"
        + slotTable("Weekdays", "Day", std::span(days).first(isWeekendUsed ? 7 : 5), names, largestNet(days));
    names.clear();
    for (std::size_t hour = 0; hour < hours.size(); ++hour)
        names.push_back((hour < 10 ? "0" : "") + std::to_string(hour) + ":00");
    const double largest = largestNet(hours);
    html += slotTable(
        "Hours before noon", "Hour", std::span(hours).first(12), std::span(names).first(12), largest);
    html += slotTable(
        "Hours from noon", "Hour", std::span(hours).last(12), std::span(names).last(12), largest);
    return html + "</div>";
}

std::string drawdownsPart(const RunResult& result)
{
    const std::vector<DrawdownSpan> spans = worstDrawdowns(result);
    if (spans.empty())
        return "<p class=\"note\">Daily equity never fell.</p>";
    std::string html
        = "<div class=\"wide\"><table>\n<caption>The deepest falls of daily equity</caption>\n<thead><tr><th "
          "scope=\"col\">Peak</th><th scope=\"col\">Bottom</th><th scope=\"col\">Recovered</th><th "
          "scope=\"col\" "
          "class=\"n\">Depth</th><th scope=\"col\" class=\"n\">Days</th></tr></thead>\n<tbody>\n";
    for (const DrawdownSpan& span : spans) {
        html += "<tr><td class=\"t\">" + peakText(span.peakDay, result) + "</td><td class=\"t\">"
            + isoDate(span.bottomDay) + "</td><td class=\"t\">"
            + (span.recoveredDay ? isoDate(*span.recoveredDay) : "not yet") + "</td><td class=\"n\">"
            + percentText(span.depth) + "</td><td class=\"n\">" + groupedText(span.days, 0) + "</td></tr>\n";
    }
    return html + "</tbody>\n</table></div>";
}

} // namespace lab
