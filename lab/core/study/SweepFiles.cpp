#include "lab/core/study/SweepFiles.h"

#include "lab/core/output/FigureText.h"
#include "lab/core/output/HeatMap.h"
#include "lab/core/output/JsonObject.h"
#include "lab/core/output/MissingFigure.h"
#include "lab/core/output/PageFrame.h"
#include "lab/core/output/RunWords.h"
#include "lab/core/output/Texts.h"
#include "lab/core/study/StudyHead.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace lab {

namespace {

constexpr std::size_t mostSteps = 80; ///< of an axis in a map

std::string setJson(const SweepTable& table, std::size_t place, int depth)
{
    const SetResult& set = table.sets[place];
    JsonObject inputs;
    for (const auto& [name, value] : table.grid.inputsOf(set.number))
        inputs.text(name, value);
    JsonObject json;
    json.count("set", set.number);
    json.raw("inputs", inputs.value(depth + 1));
    for (const std::string_view key : {"trades", "netProfit", "sharpe", "maxDrawdown"})
        json.raw(key, figureJson(*figureRow(key), set.figure(key)));
    json.raw("value", figureJson(*table.order.sort.row, table.sorted(set)));
    json.number("stability", table.stability[place]);
    return json.value(depth);
}

/// Two axes of the grid, the one with most values across.
struct MapAxes {
    std::size_t across = 0;
    std::optional<std::size_t> down;
};

std::optional<MapAxes> mapAxes(const Grid& grid)
{
    std::vector<std::size_t> axes(grid.axes().size());
    std::iota(axes.begin(), axes.end(), std::size_t{0});
    std::erase_if(axes, [&](std::size_t axis) { return grid.axes()[axis].values.size() < 2; });
    std::ranges::stable_sort(
        axes, std::ranges::greater(), [&](std::size_t axis) { return grid.axes()[axis].values.size(); });
    if (axes.empty())
        return std::nullopt;
    return MapAxes{axes[0], axes.size() > 1 ? std::optional(axes[1]) : std::nullopt};
}

/// The steps of an axis that a map shows: all, or as many as there is room for, that of the best among them.
std::vector<std::size_t> shownSteps(std::size_t count, std::size_t best)
{
    const std::size_t stride = (count + mostSteps - 1) / mostSteps;
    std::vector<std::size_t> steps;
    for (std::size_t step = best % stride; step < count; step += stride)
        steps.push_back(step);
    return steps;
}

double shown(FigureKind kind, double value)
{
    switch (kind) {
    case FigureKind::Money:
        return value / 100;
    case FigureKind::Fraction:
        return value * 100;
    default:
        return value;
    }
}

/// The plane of the grid through the best set.
HeatGrid planeOf(
    const SweepTable& table, const MapAxes& axes, const std::function<Figure(std::size_t place)>& valueOf)
{
    const std::vector<GridAxis>& all = table.grid.axes();
    std::vector<std::size_t> places = table.grid.placesOf(table.sets[*table.best].number);
    const auto across = shownSteps(all[axes.across].values.size(), places[axes.across]);
    const auto down = axes.down ? shownSteps(all[*axes.down].values.size(), places[*axes.down])
                                : std::vector<std::size_t>{0};
    HeatGrid map;
    map.columnName = all[axes.across].name;
    map.rowName = axes.down ? all[*axes.down].name : std::string();
    for (const std::size_t step : across)
        map.columns.push_back(all[axes.across].values[step]);
    for (const std::size_t row : down) {
        map.rows.push_back(axes.down ? all[*axes.down].values[row] : std::string());
        auto& values = map.values.emplace_back();
        for (const std::size_t column : across) {
            places[axes.across] = column;
            if (axes.down)
                places[*axes.down] = row;
            const std::uint64_t number = table.grid.numberOf(places);
            const auto set = std::ranges::lower_bound(table.sets, number, {}, &SetResult::number);
            const bool isThere = set != table.sets.end() && set->number == number;
            values.push_back(
                isThere ? valueOf(static_cast<std::size_t>(set - table.sets.begin())) : std::nullopt);
        }
    }
    return map;
}

std::string elsewhere(const SweepTable& table, const MapAxes& axes)
{
    std::vector<std::pair<std::string, std::string>> others;
    const auto inputs = table.grid.inputsOf(table.sets[*table.best].number);
    for (std::size_t axis = 0; axis < inputs.size(); ++axis) {
        if (axis != axes.across && axis != axes.down)
            others.push_back(inputs[axis]);
    }
    return others.empty() ? std::string() : " at " + inputsText(others);
}

std::string_view whyUnstable(const SweepTable& table, const SetResult& set)
{
    if (table.sets.size() != table.grid.size())
        return "only known where every set of the grid was tried";
    const Figure value = table.sorted(set);
    if (!value || *value <= 0)
        return "needs a figure above 0";
    return "no neighbour has the figure, or theirs is beyond 1,000 % of it: it is hardly above 0";
}

std::string count(std::uint64_t number)
{
    return groupedText(static_cast<double>(number), 0);
}

std::string rankHtml(const SweepTable& table, std::size_t rank)
{
    if (isEligible(table.sets[table.ranking[rank]], table.order))
        return std::to_string(rank + 1);
    return "<span title=\"has fewer than " + count(table.order.minTrades) + " trades, or not the figure\">"
        + std::string(undefinedText) + "</span>";
}

std::string overview(const SweepTable& table)
{
    const SortFigure& sort = table.order.sort;
    std::string html
        = "<p>" + count(table.sets.size()) + " of " + count(table.grid.size()) + " sets were tried";
    if (table.choice.failed > 0)
        html += ", of which " + count(table.choice.failed) + " failed";
    html += ". This page shows the best of them by " + escaped(sort.row->name) + " (the "
        + (sort.lowIsBest ? "lowest" : "highest") + "), of those with at least "
        + count(table.order.minTrades) + " trades.</p>\n<table>\n<tbody>\n";
    const auto line = [&](std::string_view name, const Figure& value, std::string_view formula,
                          std::string_view why) {
        html += "<tr><th scope=\"row\">" + escaped(name) + "</th><td class=\"n\">"
            + figureText(FigureKind::Fraction, value) + "</td><td class=\"formula\">" + escaped(formula);
        if (!value)
            html += "<br><span class=\"why\">" + std::string(undefinedText) + ": " + escaped(why) + "</span>";
        html += "</td></tr>\n";
    };
    line("Deflated Sharpe ratio (DSR)", table.deflatedSharpe,
        "PSR against √V·((1 − γ)·Φ⁻¹(1 − 1/N) + γ·Φ⁻¹(1 − 1/(N·e))), N = sets tried, V = variance of their "
        "Sharpe ratios, γ = 0.5772…",
        whyNoDeflated);
    line("Probability of overfitting (PBO)", table.overfittingProbability,
        "share of the halvings of 16 blocks of days in which the best of one half is not above the median of "
        "the other",
        whyNoOverfitting(table));
    line("Stability of the neighbourhood", table.stability[*table.best],
        "mean of the neighbours' figures / the figure; neighbours differ by one step in one or several "
        "inputs, diagonals "
        "included",
        whyUnstable(table, table.sets[*table.best]));
    html += "</tbody>\n</table>\n<div class=\"wide\" tabindex=\"0\" role=\"region\" aria-label=\"The best "
            "sets\"><table class=\"study\">\n<caption>The best sets</caption>\n<thead><tr>";
    html += "<th scope=\"col\" class=\"n\">Rank</th><th scope=\"col\">Inputs</th>";
    for (const FigureRow* row : shownFigures(sort))
        html += "<th scope=\"col\" class=\"n\">" + escaped(row->name) + "</th>";
    html += "<th scope=\"col\" class=\"n\">Stability</th></tr></thead>\n<tbody>\n";
    for (std::size_t rank = 0; rank < std::min(shownSets, table.ranking.size()); ++rank) {
        const SetResult& set = table.sets[table.ranking[rank]];
        if (set.failure)
            break;
        html += "<tr><td class=\"n\">" + rankHtml(table, rank) + "</td><th scope=\"row\">"
            + escaped(shortened(inputsText(table.grid.inputsOf(set.number)), 200)) + "</th>";
        const auto figureOf = [&set](std::string_view key) { return set.figure(key); };
        for (const FigureRow* row : shownFigures(sort))
            html += "<td class=\"n\">"
                + figureHtml(row->kind, set.figure(row->key), whyMissing(row->key, figureOf)) + "</td>";
        html += "<td class=\"n\">"
            + figureHtml(FigureKind::Fraction, table.stability[table.ranking[rank]], whyUnstable(table, set))
            + "</td></tr>\n";
    }
    return html + "</tbody>\n</table></div>";
}

std::vector<std::string> sweepWarnings(const SweepTable& table)
{
    std::vector<std::string> warnings;
    if (!table.best)
        warnings.push_back("No set can be chosen: " + whyNone(table.choice, table.order));
    if (table.choice.failed > 0)
        warnings.push_back(count(table.choice.failed) + " of " + count(table.choice.sets) + " sets failed");
    return warnings;
}

} // namespace

std::vector<const FigureRow*> shownFigures(const SortFigure& sort)
{
    std::vector<const FigureRow*> rows{sort.row};
    for (const std::string_view key : {"trades", "netProfit", "sharpe", "maxDrawdown"}) {
        if (const FigureRow* row = figureRow(key); row != sort.row)
            rows.push_back(row);
    }
    return rows;
}

std::string_view whyNoOverfitting(const SweepTable& table)
{
    return table.choice.sets - table.choice.failed < 2
        ? "needs at least two sets that did not fail"
        : "needs at least 32 days with prices, two in each of 16 blocks; "
          "left out for more than 67 million daily returns";
}

std::string inputsText(const std::vector<std::pair<std::string, std::string>>& inputs)
{
    std::string text;
    for (const auto& [name, value] : inputs)
        text.append(text.empty() ? "" : " ").append(name).append("=").append(value);
    return text;
}

std::string csvCell(std::string_view text)
{
    const std::string line = oneLine(text);
    if (line.find_first_of(",\"") == std::string::npos)
        return line;
    std::string cell = "\"";
    for (const char c : line)
        cell.append(c == '"' ? "\"\"" : std::string(1, c));
    return cell + '"';
}

std::string sweepCsv(const SweepTable& table)
{
    std::string csv = "rank,set";
    for (const GridAxis& axis : table.grid.axes())
        csv += ',' + csvCell(axis.name);
    csv += ",status";
    for (const FigureRow& row : figureRows())
        csv.append(",").append(row.key);
    csv += ",stability,reason\n";
    for (std::size_t rank = 0; rank < table.ranking.size(); ++rank) {
        const SetResult& set = table.sets[table.ranking[rank]];
        csv += std::to_string(rank + 1) + ',' + std::to_string(set.number);
        for (const auto& [name, value] : table.grid.inputsOf(set.number))
            csv += ',' + csvCell(value);
        csv += set.failure ? ",failed" : ",done";
        for (std::size_t i = 0; i < figureRows().size(); ++i)
            csv += ',' + figureData(figureRows()[i].kind, i < set.figures.size() ? set.figures[i] : Figure());
        csv += ',' + figureData(FigureKind::Number, table.stability[table.ranking[rank]]) + ','
            + csvCell(set.failure.value_or("")) + '\n';
    }
    return csv;
}

std::string sweepJson(const SweepTable& table, const RunResult& about, std::string_view version)
{
    JsonObject json = studyHead(about, version);
    json.text("timeframe", practice::timeframeKey(about.settings.timeframe));
    json.time("from", about.settings.from);
    json.time("to", about.settings.to);
    json.text("model", modelText(about.settings.model));
    json.count("seed", about.settings.seed);
    json.flag("simulated", about.simulated);
    json.raw("inputs", triedJson(table.grid));
    json.raw("fixedInputs", fixedJson(table.grid, about.inputs));
    json.count("gridSize", table.grid.size());
    json.count("sets", table.sets.size());
    json.count("failed", table.choice.failed);
    json.text("sort", table.order.sort.row->key);
    json.text("bestIs", table.order.sort.lowIsBest ? "lowest" : "highest");
    json.count("minTrades", table.order.minTrades);
    json.number("deflatedSharpe", table.deflatedSharpe);
    json.number("overfittingProbability", table.overfittingProbability);
    json.count("eligible", table.choice.eligible);
    json.texts("warnings", sweepWarnings(table));
    if (table.best)
        json.raw("best", setJson(table, *table.best, 1));
    else
        json.nothing("best");
    return json.document();
}

std::vector<std::string> sweepParts(const SweepTable& table)
{
    if (!table.best)
        return {};
    std::vector<std::string> parts{pageSection("sweep", "Sweep", overview(table))};
    const std::optional<MapAxes> axes = mapAxes(table.grid);
    if (!axes)
        return parts;
    const SortFigure& sort = table.order.sort;
    HeatGrid map = planeOf(table, *axes, [&](std::size_t place) -> Figure {
        const Figure value = table.sorted(table.sets[place]);
        return value ? Figure(shown(sort.row->kind, *value)) : Figure();
    });
    map.figure = std::string(sort.row->name) + (sort.row->kind == FigureKind::Fraction ? ", %," : "")
        + elsewhere(table, *axes);
    map.lowIsBest = sort.lowIsBest;
    parts.push_back(heatMap(map));
    if (table.sets.size() == table.grid.size()) {
        HeatGrid neighbours = planeOf(table, *axes, [&](std::size_t place) -> Figure {
            const Figure share = table.stability[place];
            return share ? Figure(*share * 100) : Figure();
        });
        neighbours.figure
            = "Neighbours' mean / own " + std::string(sort.row->name) + ", %," + elsewhere(table, *axes);
        neighbours.id = "stability";
        neighbours.missing = "failed, or its figure is not above 0, or hardly";
        neighbours.title = "Stability of the neighbourhood";
        parts.push_back(heatMap(neighbours));
    }
    return parts;
}

} // namespace lab
