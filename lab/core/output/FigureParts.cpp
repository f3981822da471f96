#include "lab/core/figures/Warnings.h"
#include "lab/core/output/FigureText.h"
#include "lab/core/output/MissingFigure.h"
#include "lab/core/output/PageParts.h"
#include "lab/core/output/RunWords.h"
#include "lab/core/output/Texts.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace lab {

namespace {

/// The groups of the figures by the key that begins each.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> groups{{
    {"from", "Run"},
    {"startBalance", "Result"},
    {"cagr", "Return and risk"},
    {"maxDrawdown", "Drawdown"},
    {"trades", "Trades"},
    {"commission", "Costs"},
    {"var95", "Tails"},
    {"buyAndHold", "Limits and checks"},
}};

const std::string notKnown = "not known";

using Lines = std::vector<std::pair<std::string, std::string>>;

std::string settingsTable(std::string_view caption, const Lines& lines)
{
    std::string html = "<table>\n<caption>" + escaped(caption) + "</caption>\n<tbody>\n";
    for (const auto& [name, value] : lines)
        html += "<tr><th scope=\"row\">" + escaped(name) + "</th><td>" + escaped(value) + "</td></tr>\n";
    return html + "</tbody>\n</table>\n";
}

Lines shortenedLines(const Lines& all, const PageLimits& limits)
{
    Lines lines;
    for (std::size_t number = 0; number < std::min(all.size(), limits.texts); ++number)
        lines.emplace_back(shortened(all[number].first, 100), shortened(all[number].second, 200));
    if (lines.size() < all.size())
        lines.emplace_back("and more", std::to_string(all.size() - lines.size()));
    return lines;
}

Lines closedTradesLines(const RunResult& result)
{
    const RunSettings& settings = result.settings;
    return {{"Symbol", shortened(settings.symbol, 100)},
        {"First opening", settings.from ? minuteText(*settings.from) + " UTC" : notKnown},
        {"Until", settings.to ? minuteText(*settings.to) + " UTC" : notKnown},
        {"Balance", practice::moneyText(result.startBalance)}};
}

std::string warmupText(const RunResult& result)
{
    const auto bars = static_cast<double>(result.warmupBars);
    const auto wanted = static_cast<double>(std::max(0, result.settings.warmup()));
    return groupedText(bars, 0) + (bars < wanted ? " instead of " + groupedText(wanted, 0) : "");
}

Lines priceLines(const RunResult& result)
{
    const RunSettings& settings = result.settings;
    Lines lines{{"Symbol", shortened(settings.symbol, 100)},
        {"Timeframe", std::string(practice::timeframeKey(settings.timeframe))},
        {"From", settings.from ? minuteText(*settings.from) + " UTC" : notKnown},
        {"To", settings.to ? minuteText(*settings.to) + " UTC" : notKnown},
        {"Prices", result.simulated ? "simulated at speed " + shortestText(settings.speed) : "recorded"},
        {"Model of time", std::string(modelText(settings.model))}};
    if (settings.model == Model::Open || settings.model == Model::Ohlc)
        lines.emplace_back("High and low", std::string(extremesText(settings.extremes)));
    lines.emplace_back("Spread",
        settings.spreadPoints ? std::to_string(*settings.spreadPoints) + " points" : "as recorded or usual");
    lines.emplace_back("Bars before the start", warmupText(result));
    return lines;
}

Lines accountLines(const RunResult& result)
{
    const RunSettings& settings = result.settings;
    return {{"Rules", std::string(rulesText(settings.rules))},
        {"Balance", practice::moneyText(result.startBalance)},
        {"Leverage", "1:" + std::to_string(settings.leverage)},
        {"Delay of orders", groupedText(static_cast<double>(settings.delayMs), 0) + " ms"},
        {"Seed", std::to_string(settings.seed)}, {"Hash of the script", hexText(result.scriptHash)},
        {"Hash of the prices", hexText(result.dataHash)}, {"Print of the ticks", hexText(result.tickPrint)},
        {"Print of the decisions", hexText(result.decisionPrint)}};
}

std::string tile(const Figures& figures, std::string_view key)
{
    const FigureRow* const row = figureRow(key);
    if (!row)
        return {};
    const Figure value = row->of(figures);
    return "<div><dt>" + escaped(row->name) + "</dt><dd>" + figureText(row->kind, value)
        + (value ? std::string() : "<small>" + escaped(whyMissing(key, figures)) + "</small>")
        + "</dd></div>\n";
}

std::string reasonLine(const FigureRow& row, const Figures& figures)
{
    if (row.of(figures))
        return {};
    return (row.formula.empty() ? "" : "<br>") + std::string("<span class=\"why\">")
        + std::string(undefinedText) + ": " + escaped(whyMissing(row.key, figures)) + "</span>";
}

} // namespace

std::string_view signedCell(double value)
{
    if (value > 0)
        return " class=\"n gain\"";
    return value < 0 ? " class=\"n loss\"" : " class=\"n\"";
}

std::string verdictPart(
    const RunResult& result, const Figures& figures, const ReportWords& words, const PageLimits& limits)
{
    std::string html;
    if (!figures.warnings.empty()) {
        const std::size_t count = std::min(figures.warnings.size(), limits.texts);
        html += "<ul class=\"warnings\">\n";
        for (std::size_t number = 0; number < count; ++number)
            html += "<li>" + escaped(shortened(figures.warnings[number], 500)) + "</li>\n";
        if (count < figures.warnings.size())
            html += "<li>and " + std::to_string(figures.warnings.size() - count) + " more</li>\n";
        html += "</ul>\n";
    }
    const std::string study = words.study ? words.study->summary + ' ' : std::string();
    html
        += "<p class=\"verdict\">" + escaped(shortened(study + verdictOf(result, figures), 1'000)) + "</p>\n";
    html += "<dl class=\"tiles\">\n";
    for (const std::string_view key :
        {"netProfit", "cagr", "sharpe", "maxDrawdown", "profitFactor", "trades"})
        html += tile(figures, key);
    return html + "</dl>";
}

std::string settingsPart(const RunResult& result, const ReportWords& words, const PageLimits& limits)
{
    if (result.closedTradesOnly)
        return "<div class=\"settings\">\n"
            + settingsTable("An account's closed trades", closedTradesLines(result)) + "</div>";
    Lines prices = priceLines(result);
    prices.insert(prices.begin(), {"Script", shortened(words.script, 200)});
    std::string html = "<div class=\"settings\">\n"
        + (words.study ? settingsTable(words.study->name, shortenedLines(words.study->settings, limits))
                       : std::string())
        + settingsTable("Script and prices", prices)
        + settingsTable("Account and fingerprints", accountLines(result));
    Lines inputs;
    for (const RunInput& input : runInputs(result))
        inputs.emplace_back(input.name,
            input.isSwept ? "swept, chosen anew in each window"
                          : shortened(input.literal, 180) + (input.isChanged ? " (changed)" : ""));
    if (!inputs.empty())
        html += settingsTable("Inputs of the script", shortenedLines(inputs, limits));
    return html + "</div>";
}

std::string figuresPart(const Figures& figures)
{
    std::string html = "<div class=\"figures\">\n";
    bool isOpen = false;
    for (const FigureRow& row : figureRows()) {
        const auto* const group = std::find_if(
            groups.begin(), groups.end(), [&](const auto& candidate) { return candidate.first == row.key; });
        if (group != groups.end() || !isOpen) {
            html += isOpen ? "</tbody>\n</table>\n" : "";
            html += "<table>\n<caption>" + escaped(group != groups.end() ? group->second : "Figures")
                + "</caption>\n<thead><tr><th scope=\"col\">Figure</th><th scope=\"col\" "
                  "class=\"n\">Value</th>"
                  "<th scope=\"col\">Formula</th></tr></thead>\n<tbody>\n";
            isOpen = true;
        }
        html += "<tr><th scope=\"row\">" + escaped(row.name) + "</th><td class=\"n\">"
            + figureText(row.kind, row.of(figures)) + "</td><td class=\"formula\">" + escaped(row.formula)
            + reasonLine(row, figures) + "</td></tr>\n";
    }
    return html + (isOpen ? "</tbody>\n</table>\n</div>" : "</div>");
}

} // namespace lab
