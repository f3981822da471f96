#include "lab/core/study/WalkFiles.h"

#include "lab/core/figures/StudyStatistics.h"
#include "lab/core/output/FigureText.h"
#include "lab/core/output/JsonObject.h"
#include "lab/core/output/MissingFigure.h"
#include "lab/core/output/PageFrame.h"
#include "lab/core/output/Texts.h"
#include "lab/core/study/StudyHead.h"
#include "lab/core/study/SweepFiles.h"

#include <algorithm>
#include <array>
#include <utility>

namespace lab {

namespace {

constexpr std::array<std::string_view, 5> testKeys{"trades", "netProfit", "cagr", "sharpe", "maxDrawdown"};

/// Figures that stretch what happened to a year.
constexpr std::array<std::string_view, 5> yearlyKeys{"cagr", "volatility", "sharpe", "sortino", "calmar"};

constexpr std::string_view stumpText = "less than half a test: too short for figures by the year";

Figure trainings(const WalkRow& row, std::string_view key)
{
    return row.chosen ? row.chosen->figure(key) : Figure();
}

/// What of the training is told: the figure that has decided, and others whatever that is.
std::array<std::pair<std::string_view, std::string_view>, 4> trainKeys(const SweepOrder& order)
{
    return {{{"trainSort", order.sort.row->key}, {"trainTrades", "trades"}, {"trainNetProfit", "netProfit"},
        {"trainCagr", "cagr"}}};
}

std::string rowJson(const Walk& walk, std::size_t number)
{
    const WalkRow& row = walk.rows[number];
    JsonObject json;
    json.count("window", number + 1);
    json.time("trainFrom", row.window.trainFrom);
    json.time("testFrom", row.window.testFrom);
    json.time("testTo", row.window.testTo);
    json.flag("cutShort", row.window.shortBy > 0);
    if (row.chosen) {
        JsonObject inputs;
        for (const auto& [name, value] : walk.grid.inputsOf(row.chosen->number))
            inputs.text(name, value);
        json.raw("inputs", inputs.value(3));
    } else {
        json.nothing("inputs");
    }
    for (const auto& [name, key] : trainKeys(walk.order))
        json.raw(name, figureJson(*figureRow(key), trainings(row, key)));
    for (const std::string_view key : testKeys)
        json.raw(key, figureJson(*figureRow(key), row.tested(key)));
    json.number("efficiency", row.efficiency());
    json.count("eligible", row.choice.eligible);
    json.count("failed", row.choice.failed);
    json.text("reason", row.reason(walk.order));
    return json.value(2);
}

std::string rowsJson(const Walk& walk)
{
    std::string json = "[";
    for (std::size_t number = 0; number < walk.rows.size(); ++number)
        json += (number > 0 ? ",\n    " : "\n    ") + rowJson(walk, number);
    return json + "\n  ]";
}

std::vector<std::string> walkWarnings(const Walk& walk)
{
    std::vector<std::string> warnings;
    const Choice choice = walk.choice();
    if (choice.eligible == 0)
        warnings.push_back("No set can be chosen: " + whyNone(choice, walk.order));
    if (walk.failed > 0)
        warnings.push_back(std::to_string(walk.failed) + " runs of the trainings failed");
    return warnings;
}

/// Without a time of day where it is midnight; it may break between the two.
std::string dateText(practice::TimeMs time)
{
    const std::string text = minuteText(time);
    return "<span class=\"t\">" + text.substr(0, 10) + "</span>"
        + (time % practice::dayMs == 0 ? "" : text.substr(10));
}

constexpr std::string_view nothingChosen = "no set was chosen";

std::string_view whyNoGrowth(const WalkRow& row)
{
    if (!row.chosen)
        return nothingChosen;
    return whyMissing("cagr", [&row](std::string_view key) { return row.chosen->figure(key); });
}

std::string_view whyUntested(const WalkRow& row, std::string_view key)
{
    if (!row.chosen)
        return nothingChosen;
    if (!row.test)
        return "the walk was over before";
    return figureRow(key)->of(*row.test) ? stumpText : whyMissing(key, *row.test);
}

std::string_view whyNotEfficient(const WalkRow& row)
{
    if (!row.tested("cagr"))
        return whyUntested(row, "cagr");
    const Figure past = trainings(row, "cagr");
    return past && *past > 0 ? whyTrifle : "needs growth on the past";
}

} // namespace

void WalkRow::choose(std::vector<SetResult> training, const SweepOrder& order)
{
    choice = choiceAmong(training, order);
    if (const auto best = bestOf(training, order))
        chosen = std::move(training[*best]);
}

std::string WalkRow::reason(const SweepOrder& order) const
{
    if (!chosen)
        return whyNone(choice, order);
    if (!test)
        return "the walk was over before";
    if (window.shortBy == 0)
        return ending;
    const practice::TimeMs length = window.testLength();
    return lengthText(length) + " instead of " + lengthText(length + window.shortBy)
        + (ending.empty() ? "" : "; " + ending);
}

Figure WalkRow::tested(std::string_view key) const
{
    if (!test || (window.isStump() && std::ranges::find(yearlyKeys, key) != yearlyKeys.end()))
        return {};
    return figureRow(key)->of(*test);
}

Figure WalkRow::efficiency() const
{
    return shareOf(tested("cagr"), trainings(*this, "cagr"));
}

Figure Walk::pastGrowth() const
{
    double sum = 0;
    std::size_t count = 0;
    for (const WalkRow& row : rows) {
        if (const Figure growth = trainings(row, "cagr"); growth && row.test) {
            sum += *growth;
            ++count;
        }
    }
    return count > 0 ? Figure(sum / static_cast<double>(count)) : Figure();
}

Figure Walk::efficiency() const
{
    return whole ? shareOf(whole->cagr, pastGrowth()) : Figure();
}

std::string Walk::efficiencyGap() const
{
    if (efficiency())
        return {};
    if (!whole || !whole->cagr)
        return "growth a year of the tests is undefined";
    const Figure past = pastGrowth();
    if (!past)
        return "growth a year of the choices on their pasts is undefined";
    return *past > 0 ? std::string(whyTrifle)
                     : "the choices did not grow on their pasts on average: "
            + figureText(FigureKind::Fraction, past) + " a year";
}

Choice Walk::choice() const
{
    Choice all;
    for (const WalkRow& row : rows) {
        all.sets += row.choice.sets;
        all.eligible += row.choice.eligible;
        all.failed += row.choice.failed;
        all.withTrades += row.choice.withTrades;
        all.mostTrades = std::max(all.mostTrades, row.choice.mostTrades);
    }
    return all;
}

std::size_t Walk::tested() const
{
    return static_cast<std::size_t>(
        std::ranges::count_if(rows, [](const WalkRow& row) { return row.test.has_value(); }));
}

std::string lengthText(practice::TimeMs length)
{
    const auto counted = [](practice::TimeMs count, const char* one) {
        return groupedText(static_cast<double>(count), 0) + ' ' + one + (count == 1 ? "" : "s");
    };
    if (length < practice::hourMs)
        return counted(length / practice::minuteMs, "minute");
    if (length < practice::dayMs)
        return counted(length / practice::hourMs, "hour");
    if (length % practice::dayMs == 0)
        return counted(length / practice::dayMs, "day");
    return fixedText(static_cast<double>(length / (practice::dayMs / 10)) / 10, 1) + " days";
}

std::string walkCsv(const Walk& walk)
{
    std::string csv = "window,trainFrom,testFrom,testTo";
    for (const GridAxis& axis : walk.grid.axes())
        csv += ',' + csvCell(axis.name);
    for (const auto& [name, key] : trainKeys(walk.order))
        csv.append(",").append(name);
    for (const std::string_view key : testKeys)
        csv.append(",").append(key);
    csv += ",efficiency,eligible,reason\n";
    for (std::size_t number = 0; number < walk.rows.size(); ++number) {
        const WalkRow& row = walk.rows[number];
        csv += std::to_string(number + 1) + ',' + isoTime(row.window.trainFrom) + ','
            + isoTime(row.window.testFrom) + ',' + isoTime(row.window.testTo);
        for (std::size_t axis = 0; axis < walk.grid.axes().size(); ++axis)
            csv += ',' + (row.chosen ? csvCell(walk.grid.inputsOf(row.chosen->number)[axis].second) : "");
        for (const auto& [name, key] : trainKeys(walk.order))
            csv += ',' + figureData(figureRow(key)->kind, trainings(row, key));
        for (const std::string_view key : testKeys)
            csv += ',' + figureData(figureRow(key)->kind, row.tested(key));
        csv += ',' + figureData(FigureKind::Number, row.efficiency()) + ','
            + std::to_string(row.choice.eligible) + ',' + csvCell(row.reason(walk.order)) + '\n';
    }
    return csv;
}

std::string walkJson(const Walk& walk, const RunResult& about, std::string_view version)
{
    JsonObject json = studyHead(about, version);
    json.raw("inputs", triedJson(walk.grid));
    json.raw("fixedInputs", fixedJson(walk.grid, about.inputs));
    json.flag("anchored", walk.isAnchored);
    json.count("windows", walk.rows.size());
    json.count("setsPerWindow", walk.setsPerWindow);
    json.count("failed", walk.failed);
    json.text("sort", walk.order.sort.row->key);
    json.count("minTrades", walk.order.minTrades);
    json.number("cagr", walk.whole ? walk.whole->cagr : Figure());
    json.number("sharpe", walk.whole ? walk.whole->sharpe : Figure());
    json.number("efficiency", walk.efficiency());
    json.count("tested", walk.tested());
    json.texts("warnings", walkWarnings(walk));
    json.raw("rows", rowsJson(walk));
    return json.document();
}

std::string walkPart(const Walk& walk)
{
    const SortFigure& sort = walk.order.sort;
    std::string html = "<p>Each window has chosen the best of "
        + groupedText(static_cast<double>(walk.setsPerWindow), 0) + " sets by " + escaped(sort.row->name)
        + " on its past" + (walk.isAnchored ? ", from the first day on" : "")
        + "; this page shows the times behind the choices, one after the other. Between windows all "
          "positions are "
          "closed (END) and the script starts anew; the account, with its plan, goes on. Efficiency: "
        + figureText(FigureKind::Fraction, walk.efficiency()) + " ("
        + (walk.efficiency() ? std::string() : walk.efficiencyGap() + "; ")
        + "growth a year over these times / mean growth a year of the choices on their pasts).</p>\n"
          "<div class=\"wide\" tabindex=\"0\" role=\"region\" aria-label=\"Windows\"><table "
          "class=\"study\">\n"
          "<caption>Windows, times in UTC</caption>\n<thead><tr>";
    for (const std::string_view name : {"Chosen on", "Tried from", "to", "Inputs"})
        html += "<th scope=\"col\">" + escaped(name) + "</th>";
    html += "<th scope=\"col\" class=\"n\">Past: growth a year</th>";
    for (const std::string_view key : testKeys)
        html += "<th scope=\"col\" class=\"n\">" + escaped(figureRow(key)->name) + "</th>";
    html += "<th scope=\"col\" class=\"n\">Efficiency</th></tr></thead>\n<tbody>\n";
    for (const WalkRow& row : walk.rows) {
        const std::string inputs
            = row.chosen ? shortened(inputsText(walk.grid.inputsOf(row.chosen->number)), 200) : std::string();
        const std::string reason = row.reason(walk.order);
        html += "<tr><td>" + dateText(row.window.trainFrom) + "</td><td>" + dateText(row.window.testFrom)
            + "</td><td>" + dateText(row.window.testTo) + "</td><td>"
            + escaped(inputs + (inputs.empty() || reason.empty() ? "" : "; ") + reason)
            + "</td><td class=\"n\">"
            + figureHtml(FigureKind::Fraction, trainings(row, "cagr"), whyNoGrowth(row)) + "</td>";
        for (const std::string_view key : testKeys)
            html += "<td class=\"n\">"
                + figureHtml(figureRow(key)->kind, row.tested(key), whyUntested(row, key)) + "</td>";
        html += "<td class=\"n\">" + figureHtml(FigureKind::Fraction, row.efficiency(), whyNotEfficient(row))
            + "</td></tr>\n";
    }
    return pageSection("walk", "Walk forward", html + "</tbody>\n</table></div>");
}

} // namespace lab
