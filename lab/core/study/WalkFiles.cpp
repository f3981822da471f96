#include "lab/core/study/WalkFiles.h"

#include "lab/core/output/FigureText.h"
#include "lab/core/output/JsonObject.h"
#include "lab/core/output/PageFrame.h"
#include "lab/core/output/Texts.h"
#include "lab/core/study/StudyHead.h"
#include "lab/core/study/SweepFiles.h"

#include <array>

namespace lab {

namespace {

constexpr std::array<std::string_view, 5> tested{"trades", "netProfit", "cagr", "sharpe", "maxDrawdown"};

Figure ratio(const Figure& above, const Figure& below)
{
    if (!above || !below || *below <= 0)
        return {};
    return *above / *below;
}

Figure tests(const WalkRow& row, std::string_view key)
{
    return row.test ? figureRow(key)->of(*row.test) : Figure();
}

Figure trainings(const WalkRow& row, std::string_view key)
{
    return row.chosen ? row.chosen->figure(key) : Figure();
}

} // namespace

Figure WalkRow::efficiency() const
{
    return ratio(tests(*this, "cagr"), trainings(*this, "cagr"));
}

Figure Walk::efficiency() const
{
    double sum = 0;
    std::size_t count = 0;
    for (const WalkRow& row : rows) {
        if (const Figure growth = trainings(row, "cagr"); growth && row.test) {
            sum += *growth;
            ++count;
        }
    }
    if (!whole || count == 0)
        return {};
    return ratio(whole->cagr, sum / static_cast<double>(count));
}

std::string walkCsv(const Walk& walk)
{
    std::string csv = "window,trainFrom,testFrom,testTo";
    for (const GridAxis& axis : walk.grid.axes())
        csv += ',' + csvCell(axis.name);
    csv.append(",trainSort,trainTrades,trainNetProfit,trainCagr,trades,netProfit,cagr,sharpe,maxDrawdown,"
               "efficiency\n");
    for (std::size_t number = 0; number < walk.rows.size(); ++number) {
        const WalkRow& row = walk.rows[number];
        csv += std::to_string(number + 1) + ',' + isoTime(row.window.trainFrom) + ','
            + isoTime(row.window.testFrom) + ',' + isoTime(row.window.testTo);
        for (std::size_t axis = 0; axis < walk.grid.axes().size(); ++axis)
            csv += ',' + (row.chosen ? csvCell(walk.grid.inputsOf(row.chosen->number)[axis].second) : "");
        for (const std::string_view key : {walk.order.sort.row->key, std::string_view("trades"),
                 std::string_view("netProfit"), std::string_view("cagr")})
            csv += ',' + figureData(figureRow(key)->kind, trainings(row, key));
        for (const std::string_view key : tested)
            csv += ',' + figureData(figureRow(key)->kind, tests(row, key));
        csv += ',' + figureData(FigureKind::Number, row.efficiency()) + '\n';
    }
    return csv;
}

std::string walkJson(const Walk& walk, const RunResult& about, std::string_view version)
{
    JsonObject json = studyHead(about, version);
    json.raw("inputs", triedJson(walk.grid));
    json.flag("anchored", walk.isAnchored);
    json.count("windows", walk.rows.size());
    json.count("setsPerWindow", walk.setsPerWindow);
    json.count("failed", walk.failed);
    json.text("sort", walk.order.sort.row->key);
    json.count("minTrades", walk.order.minTrades);
    json.number("cagr", walk.whole ? walk.whole->cagr : Figure());
    json.number("sharpe", walk.whole ? walk.whole->sharpe : Figure());
    json.number("efficiency", walk.efficiency());
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
          "closed (END) and the script starts anew. Efficiency: "
        + figureText(FigureKind::Fraction, walk.efficiency())
        + " (growth a year over these times / mean growth a year of the choices on their pasts).</p>\n"
          "<div class=\"wide\"><table>\n<caption>Windows</caption>\n<thead><tr>";
    for (const std::string_view name : {"Chosen on", "Tried from", "to", "Inputs", "Past: growth a year"})
        html += "<th scope=\"col\">" + escaped(name) + "</th>";
    for (const std::string_view key : tested)
        html += "<th scope=\"col\">" + escaped(figureRow(key)->name) + "</th>";
    html += "<th scope=\"col\">Efficiency</th></tr></thead>\n<tbody>\n";
    for (const WalkRow& row : walk.rows) {
        html += "<tr><td>" + minuteText(row.window.trainFrom) + "</td><td>" + minuteText(row.window.testFrom)
            + "</td><td>" + minuteText(row.window.testTo) + "</td><td>"
            + (row.chosen ? escaped(shortened(inputsText(walk.grid.inputsOf(row.chosen->number)), 200))
                          : std::string(undefinedText))
            + "</td><td class=\"n\">" + figureText(FigureKind::Fraction, trainings(row, "cagr")) + "</td>";
        for (const std::string_view key : tested)
            html += "<td class=\"n\">" + figureText(figureRow(key)->kind, tests(row, key)) + "</td>";
        html += "<td class=\"n\">" + figureText(FigureKind::Fraction, row.efficiency()) + "</td></tr>\n";
    }
    return pageSection("walk", "Walk forward", html + "</tbody>\n</table></div>");
}

} // namespace lab
