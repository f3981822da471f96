#include "lab/core/output/ReportPage.h"

#include "lab/core/output/FigureText.h"
#include "lab/core/output/PageFrame.h"
#include "lab/core/output/PageParts.h"
#include "lab/core/output/Texts.h"

#include <vector>

namespace lab {

namespace {

std::string equityPart(const RunResult& result)
{
    if (result.equity.size() < 2)
        return "<p class=\"note\">No equity.</p>";
    std::vector<CurveName> curves{{"--accent", "Equity"}, {"--second", "Balance"}};
    std::string note = "The curves have a point where the balance has changed and at the end of each UTC day";
    if (result.equity.size() > 2'000)
        note += ", neighbours joined by their highest and lowest";
    note += "; between two points the line says nothing";
    if (!result.closedTradesOnly) {
        curves.push_back({"--muted", "Lowest of the day"});
        note += ", but the pale line is the lowest equity of each UTC day, on every price";
    }
    return chartPlace("equity", "Equity and balance over time", curves) + "\n<p class=\"note\">" + note
        + ".</p>";
}

std::string fallPart(const RunResult& result)
{
    if (result.equity.size() < 2)
        return "<p class=\"note\">No equity.</p>";
    return chartPlace("drawdown", "Fall of equity below its highest value so far, over time", {})
        + "\n<p class=\"note\">Below the highest equity so far. "
        + (result.closedTradesOnly ? "What was lost between the closings is not known"
                                   : "On every price in between, the deepest fall was "
                    + percentText(result.equityDrawdown.fraction) + " ("
                    + centsText(static_cast<double>(result.equityDrawdown.money)) + ")")
        + ".</p>";
}

std::string titleOf(const RunResult& result, const ReportWords& words)
{
    if (result.closedTradesOnly)
        return "Closed trades: " + shortened(words.script, 200);
    return (words.study ? words.study->name + ": " : std::string()) + shortened(words.script, 200) + " on "
        + shortened(result.settings.symbol, 100) + ' '
        + std::string(practice::timeframeKey(result.settings.timeframe));
}

/// When a run ended that did not come to the end of its prices; empty for one that did.
std::string earlyEnd(const RunResult& result)
{
    if (result.error)
        return ", ended early on " + minuteText(result.errorTime);
    if (result.outcome != PlanOutcome::None)
        return ", the plan ended on " + minuteText(result.outcomeTime);
    return {};
}

std::string headerOf(const RunResult& result, const ReportWords& words)
{
    std::string html = "<h1>" + escaped(titleOf(result, words)) + "</h1>\n";
    if (result.settings.from && result.settings.to)
        html += "<p class=\"under\">" + minuteText(*result.settings.from) + " to "
            + minuteText(*result.settings.to) + " UTC" + earlyEnd(result) + "</p>\n";
    return html;
}

std::string page(const RunResult& result, const Figures& figures, const ReportWords& words,
    const PageLimits& limits, bool withParts)
{
    std::string body = pageSection("verdict", "Verdict", verdictPart(result, figures, words, limits))
        + pageSection("settings", "Settings", settingsPart(result, words, limits))
        + pageSection("figures", "Figures", figuresPart(figures));
    // What a study has found, such as the windows of a walk, is what its reader looks for first.
    for (const std::string& part : words.parts)
        body += withParts ? part : std::string();
    if (!withParts)
        body += pageSection(
            "omitted", "Left out", "<p class=\"note\">Further parts are too long for this page.</p>");
    body += pageSection("balance", "Equity and balance", equityPart(result))
        + pageSection("fall", "Drawdown", fallPart(result))
        + pageSection("months", "Months", monthsPart(result, limits))
        + pageSection("returns", "Daily returns", histogramPart(result))
        + pageSection("week", "Weekdays and hours", weekPart(result))
        + pageSection("drawdowns", "Worst drawdowns", drawdownsPart(result))
        + pageSection("excursions", "Excursions", excursionsPart(result, limits))
        + pageSection("bars", "Bars and trades", barsPart(result, limits))
        + pageSection("trades", "Trades", tradesPart(result, limits))
        + pageSection("journal", "Journal", journalPart(result, limits));
    return pageFrame(titleOf(result, words), headerOf(result, words), body, pageData(result, limits));
}

} // namespace

std::string reportPage(const RunResult& result, const Figures& figures, const ReportWords& words)
{
    PageLimits limits;
    std::string html = page(result, figures, words, limits, true);
    for (int attempt = 0; attempt < 3 && html.size() > maxPageBytes; ++attempt) {
        limits = limits.half();
        html = page(result, figures, words, limits, true);
    }
    return html.size() > maxPageBytes ? page(result, figures, words, limits, words.parts.empty()) : html;
}

} // namespace lab
