#include "lab/core/figures/ReportSeries.h"
#include "lab/core/output/FigureText.h"
#include "lab/core/output/PageParts.h"
#include "lab/core/output/RunWords.h"
#include "lab/core/output/Texts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <utility>
#include <vector>

namespace lab {

namespace {

std::string countText(std::size_t count)
{
    return groupedText(static_cast<double>(count), 0);
}

/// The next number upwards of the kind 1, 2 or 5 times a power of ten; 1 for what is not above 0.
double roundStep(double value)
{
    if (!(value > 0) || !std::isfinite(value))
        return 1;
    const double power = std::pow(10, std::floor(std::log10(value)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (power * factor >= value)
            return power * factor;
    }
    return power * 10;
}

/// From the bottom to the top of a drawing, in cents.
struct Heights {
    double low = 0;
    double high = 0;
    double step = 1;
    [[nodiscard]] std::string place(double value) const
    {
        return fixedText(100 * (high - value) / (high - low), 1) + '%';
    }
};

Heights heightsOf(std::span<const ExcursionPoint> points)
{
    Heights heights;
    for (const ExcursionPoint& point : points) {
        heights.low = std::min(heights.low, static_cast<double>(point.net));
        heights.high = std::max(heights.high, static_cast<double>(point.net));
    }
    heights.step = roundStep((heights.high - heights.low) / 5);
    heights.low = std::floor(heights.low / heights.step) * heights.step;
    heights.high
        = std::max(std::ceil(heights.high / heights.step), heights.low / heights.step + 1) * heights.step;
    return heights;
}

std::string scatter(std::string_view caption, std::span<const ExcursionPoint> points, const Heights& heights,
    practice::Cents ExcursionPoint::*distance)
{
    double widest = 0;
    for (const ExcursionPoint& point : points)
        widest = std::max(widest, std::abs(static_cast<double>(point.*distance)));
    const double step = roundStep(widest / 5);
    widest = std::max(1.0, std::ceil(widest / step)) * step;
    std::string html = "<figure>\n<figcaption>" + std::string(caption)
        + "</figcaption>\n<svg class=\"scatter\" role=\"img\" aria-label=\"" + std::string(caption) + "\">";
    const int lines = static_cast<int>(std::lround((heights.high - heights.low) / heights.step));
    for (int line = 0; line <= lines; ++line) {
        const double value = heights.low + line * heights.step;
        const std::string place = heights.place(value);
        html += "<line x1=\"0\" x2=\"100%\" y1=\"" + place + "\" y2=\"" + place
            + (std::abs(value) < heights.step / 2 ? "\" class=\"zero\"/>" : "\"/>");
    }
    for (const ExcursionPoint& point : points) {
        html += "<circle r=\"3\" cx=\""
            + fixedText(100 * std::abs(static_cast<double>(point.*distance)) / widest, 1) + "%\" cy=\""
            + heights.place(static_cast<double>(point.net)) + "\" class=\"" + (point.net > 0 ? "w" : "l")
            + "\"/>";
    }
    for (int line = 0; line <= lines; ++line) {
        const double value = heights.low + line * heights.step;
        html += "<text x=\"100%\" y=\"" + heights.place(value) + "\" dy=\"-3\" text-anchor=\"end\">"
            + typeset(groupedText(value / 100, heights.step < 100 ? 2 : 0)) + "</text>";
    }
    return html + "</svg>\n<div class=\"ends\"><span>0</span><span>"
        + groupedText(widest / 100, step < 100 ? 2 : 0) + "</span></div>\n</figure>\n";
}

std::string priceCell(double price, int digits)
{
    return "<td class=\"n\">" + (price == 0 ? std::string() : groupedText(price, digits)) + "</td>";
}

std::string moneyCell(practice::Cents amount)
{
    return "<td class=\"n\">" + centsText(static_cast<double>(amount)) + "</td>";
}

std::string tradeLine(const TradeRow& trade, const RunResult& result, bool withSymbol)
{
    const int digits = digitsOf(trade, result);
    const auto net = static_cast<double>(trade.net());
    std::string html = "<tr><td class=\"n\"><button type=\"button\" class=\"row\">"
        + std::to_string(trade.ticket) + "</button></td>"
        + (withSymbol ? "<td>" + escaped(shortened(symbolOf(trade, result), 40)) + "</td>" : std::string())
        + "<td>" + (trade.side == practice::Side::Buy ? "Buy" : "Sell") + "</td>" + moneyCell(trade.lots)
        + "<td class=\"t\">" + minuteText(trade.openTime) + "</td>" + priceCell(trade.openPrice, digits)
        + "<td class=\"t\">" + minuteText(trade.closeTime) + "</td>" + priceCell(trade.closePrice, digits)
        + "<td>" + std::string(reasonText(trade.reason)) + (trade.ambiguous ? " ?" : "") + "</td>";
    html += moneyCell(trade.profit) + moneyCell(trade.commission) + moneyCell(trade.swap) + "<td"
        + std::string(signedCell(net)) + '>' + centsText(net) + "</td></tr>\n";
    return html;
}

std::string reasonsTable(const RunResult& result)
{
    std::string html = "<table>\n<caption>Closed by</caption>\n<thead><tr><th scope=\"col\">Reason</th><th "
                       "scope=\"col\" class=\"n\">Trades</th><th scope=\"col\" class=\"n\">Share</th><th "
                       "scope=\"col\" class=\"n\">Net</th></tr></thead>\n<tbody>\n";
    for (const ExitSum& sum : exitSums(result)) {
        const auto net = static_cast<double>(sum.net);
        html += "<tr><th scope=\"row\">" + std::string(reasonText(sum.reason)) + "</th><td class=\"n\">"
            + countText(sum.trades) + "</td><td class=\"n\">"
            + percentText(static_cast<double>(sum.trades) / static_cast<double>(result.trades.size()), 1)
            + "</td><td" + std::string(signedCell(net)) + '>' + centsText(net) + "</td></tr>\n";
    }
    return html + "</tbody>\n</table>\n";
}

std::string reasonsLegend(bool withScript)
{
    using Reason = std::pair<ExitReason, std::string_view>;
    constexpr std::array reasons{Reason{ExitReason::StopLoss, "its stop loss was reached"},
        Reason{ExitReason::TakeProfit, "its take profit was reached"},
        Reason{ExitReason::Script, "the script closed it"},
        Reason{ExitReason::End,
            "it was still open at the end of the run, or of a window of a walk, and was closed at the last "
            "price"},
        Reason{ExitReason::Margin, "too little margin was left, so the broker closed it"},
        Reason{ExitReason::Rule, "a rule of the plan was broken, which closes everything"},
        Reason{ExitReason::Manual, "a person or a script closed it"},
        Reason{ExitReason::Other, "the account tells another reason, or none"}};
    std::string html = "\n<dl class=\"note legend\">\n";
    for (const auto& [reason, words] : reasons) {
        const bool isOfRun = reason == ExitReason::Script || reason == ExitReason::End;
        const bool isOfAccount = reason == ExitReason::Manual || reason == ExitReason::Other;
        if (withScript ? isOfAccount : isOfRun)
            continue;
        html += "<div><dt>" + std::string(reasonText(reason)) + "</dt><dd>" + std::string(words)
            + "</dd></div>\n";
    }
    return html + "</dl>";
}

} // namespace

std::string excursionsPart(const RunResult& result, const PageLimits& limits)
{
    const std::vector<ExcursionPoint> points = excursions(result, limits.dots);
    if (points.empty())
        return "<p class=\"note\">No trades.</p>";
    if (result.closedTradesOnly)
        return "<p class=\"note\">\xE2\x80\x93 How far trades went before they were closed is not known.</p>";
    const Heights heights = heightsOf(points);
    return "<p class=\"note\">How far each trade went before it was closed, along, and its net result, "
           "upwards, in "
           "the account's currency.</p>\n<div class=\"pair\">\n"
        + scatter("Adverse excursion and net", points, heights, &ExcursionPoint::worst)
        + scatter("Favourable excursion and net", points, heights, &ExcursionPoint::best) + "</div>";
}

std::string barsPart(const RunResult& result, const PageLimits& limits)
{
    if (result.closedTradesOnly)
        return "<p class=\"note\">\xE2\x80\x93 The prices are not known.</p>";
    if (result.chart.empty())
        return "<p class=\"note\">No bars.</p>";
    std::string html = "<div class=\"tools\">";
    for (const auto& [id, text] : {std::pair{"zoom-in", "Closer"}, std::pair{"zoom-out", "Wider"},
             std::pair{"earlier", "Earlier"}, std::pair{"later", "Later"}, std::pair{"whole", "Whole run"}})
        html += std::string("<button type=\"button\" id=\"") + id + "\">" + text + "</button>";
    html += "</div>\n<div class=\"chart\" id=\"candles\" role=\"img\" aria-label=\"Bars with the trades on "
            "them\"></div>\n"
            "<p class=\"readout\"></p>\n<p class=\"note\">A triangle opens a trade (upwards: buy), a dot "
            "closes it. Drag "
            "across to look closer, double-click for the whole run; a ticket in the list of trades goes to "
            "its place.";
    if (result.bars > limits.bars)
        html += " Of " + countText(result.bars) + " bars neighbours are joined into at most "
            + countText(limits.bars) + ".";
    if (result.trades.size() > limits.drawnTrades)
        html += " The " + countText(limits.drawnTrades) + " latest of " + countText(result.trades.size())
            + " trades are drawn.";
    return html + "</p>";
}

std::string tradesPart(const RunResult& result, const PageLimits& limits)
{
    if (result.trades.empty())
        return "<p class=\"note\">No trades.</p>";
    const std::size_t count = std::min(result.trades.size(), limits.listedTrades);
    const bool withSymbol = std::any_of(result.trades.begin(), result.trades.end(),
        [](const TradeRow& trade) { return !trade.symbol.empty(); });
    std::string html;
    if (count < result.trades.size())
        html += "<p class=\"note\">The " + countText(count) + " latest; "
            + countText(result.trades.size() - count)
            + " earlier trades are left out here, trades.csv has all of them.</p>\n";
    html += reasonsTable(result);
    html += "<div class=\"tall\" tabindex=\"0\" role=\"region\" aria-label=\"List of "
            "trades\"><table>\n<caption hidden>"
            "Closed trades</caption>\n<thead><tr><th scope=\"col\" class=\"n\">Ticket</th>"
        + std::string(withSymbol ? "<th scope=\"col\">Symbol</th>" : "")
        + "<th scope=\"col\">Side</th>"
          "<th scope=\"col\" class=\"n\">Lots</th><th scope=\"col\">Opened (UTC)</th><th scope=\"col\" "
          "class=\"n\">"
          "Price</th><th scope=\"col\">Closed (UTC)</th><th scope=\"col\" class=\"n\">Price</th><th "
          "scope=\"col\">"
          "Reason</th><th scope=\"col\" class=\"n\">Profit</th><th scope=\"col\" class=\"n\">Commission</th>"
          "<th scope=\"col\" class=\"n\">Swap</th><th scope=\"col\" "
          "class=\"n\">Net</th></tr></thead>\n<tbody>\n";
    for (const TradeRow& trade : std::span(result.trades).last(count))
        html += tradeLine(trade, result, withSymbol);
    html += "</tbody>\n</table></div>";
    html += reasonsLegend(!result.closedTradesOnly);
    if (std::any_of(result.trades.begin(), result.trades.end(),
            [](const TradeRow& trade) { return trade.ambiguous; }))
        html += "\n<p class=\"note\">A question mark: the last minute held both levels, so which came first "
                "is not "
                "known.</p>";
    return html;
}

std::string journalPart(const RunResult& result, const PageLimits& limits)
{
    if (result.closedTradesOnly)
        return "<p class=\"note\">No script is known of.</p>";
    if (result.journal.empty())
        return "<p class=\"note\">The script has printed nothing.</p>";
    std::size_t first = result.journal.size();
    std::size_t bytes = 0;
    std::vector<std::string> lines;
    while (first > 0) {
        const JournalLine& line = result.journal[first - 1];
        std::string text = isoTime(line.time) + "  " + escaped(shortened(line.text, 400)) + '\n';
        if (bytes + text.size() > limits.journalBytes)
            break;
        bytes += text.size();
        lines.push_back(std::move(text));
        --first;
    }
    std::string html;
    if (first > 0)
        html += "<p class=\"note\">The " + countText(lines.size()) + " latest lines; " + countText(first)
            + " earlier ones are left out here, journal.txt has "
            + (result.journalLeftOut > 0 ? "those that were kept" : "all of them") + ".</p>\n";
    html += "<div class=\"tall\" tabindex=\"0\" role=\"region\" aria-label=\"Journal\"><pre "
            "class=\"journal\">";
    for (auto line = lines.rbegin(); line != lines.rend(); ++line)
        html += *line;
    return html + "</pre></div>";
}

} // namespace lab
