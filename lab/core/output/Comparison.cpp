#include "lab/core/output/Comparison.h"

#include "lab/core/figures/FigureTable.h"
#include "lab/core/figures/ReportSeries.h"
#include "lab/core/figures/Warnings.h"
#include "lab/core/output/FigureText.h"
#include "lab/core/output/JsonObject.h"
#include "lab/core/output/PageFrame.h"
#include "lab/core/output/Texts.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <string_view>

namespace lab {

namespace {

/// As many curves have a colour of their own; page/report.js has the same ones in the same order.
constexpr std::array<std::string_view, 6> curveColours{
    "--accent", "--second", "--gain", "--loss", "--muted", "--text"};

/// Names and values of figures: a line for each, a column for each run.
struct Table {
    std::vector<std::string> names;
    std::vector<std::vector<std::string>> values;
};

/// A figure as it stands in summary.json; money is in units of the currency there.
std::string savedText(std::string_view key, const std::optional<double>& value)
{
    const FigureRow* const row = figureRow(key);
    if (!row || row->kind == FigureKind::Time)
        return value ? typeset(shortestText(*value)) : std::string(undefinedText);
    return figureText(row->kind, value && row->kind == FigureKind::Money ? *value * 100 : value);
}

std::optional<double> figureOf(const SavedRun& run, const std::string& key)
{
    for (const auto& [name, value] : run.figures) {
        if (name == key)
            return value;
    }
    return std::nullopt;
}

/// Keys of all runs, in the order of the first that has each.
template <typename Value>
std::vector<std::string> keysOf(
    const std::vector<SavedRun>& runs, std::vector<std::pair<std::string, Value>> SavedRun::*list)
{
    std::vector<std::string> keys;
    for (const SavedRun& run : runs) {
        for (const auto& [key, value] : run.*list) {
            if (std::find(keys.begin(), keys.end(), key) == keys.end())
                keys.push_back(key);
        }
    }
    return keys;
}

/// The line of a table that tells what was run; empty for what only tells how it went or stands there anyway.
std::string originName(const std::string& key)
{
    static const std::map<std::string, std::string> names{{"version", "Version"}, {"scriptHash", "Script"},
        {"dataHash", "Prices"}, {"symbol", "Symbol"}, {"timeframe", "Timeframe"}, {"warmup", "Warm-up"},
        {"model", "Model"}, {"extremes", "Extremes"}, {"spread", "Spread"}, {"delay", "Delay in ms"},
        {"account", "Account"}, {"balance", "Balance at the start"}, {"leverage", "Leverage"},
        {"seed", "Seed"}, {"speed", "Speed"}};
    if (key.starts_with("input "))
        return "Input " + shortened(key.substr(6), 60);
    const auto found = names.find(key);
    return found == names.end() ? std::string() : found->second;
}

std::string originOf(const SavedRun& run, const std::string& key)
{
    const auto found = std::find_if(
        run.origin.begin(), run.origin.end(), [&](const auto& entry) { return entry.first == key; });
    if (found == run.origin.end() || found->second == "null")
        return std::string(undefinedText);
    return found->second;
}

std::string spanText(const std::string& time)
{
    std::string text = shortened(time, 16);
    if (time.size() >= 16)
        text = oneLine(time.substr(0, 10)) + ' ' + oneLine(time.substr(11, 5));
    return text.empty() ? std::string(undefinedText) : text;
}

Table tableOf(const std::vector<SavedRun>& runs)
{
    Table table;
    const auto addLine = [&](std::string name, auto&& textOf) {
        table.names.push_back(std::move(name));
        std::vector<std::string>& line = table.values.emplace_back();
        for (const SavedRun& run : runs)
            line.push_back(textOf(run));
    };
    addLine("From", [](const SavedRun& run) { return spanText(run.from); });
    addLine("To", [](const SavedRun& run) { return spanText(run.to); });
    for (const std::string& key : keysOf(runs, &SavedRun::origin)) {
        const std::string name = originName(key);
        const std::string first = originOf(runs.front(), key);
        const bool differs = std::any_of(
            runs.begin(), runs.end(), [&](const SavedRun& run) { return originOf(run, key) != first; });
        if (!name.empty() && differs)
            addLine(name, [&](const SavedRun& run) { return shortened(originOf(run, key), 40); });
    }
    for (const std::string& key : keysOf(runs, &SavedRun::figures)) {
        if (key == "from" || key == "to")
            continue;
        const FigureRow* const row = figureRow(key);
        addLine(row ? std::string(row->name) : shortened(key, 60),
            [&](const SavedRun& run) { return savedText(key, figureOf(run, key)); });
    }
    return table;
}

bool isSame(const TradeRow& one, const TradeRow& other)
{
    return one.symbol == other.symbol && one.side == other.side && one.lots == other.lots
        && one.openTime == other.openTime && one.openPrice == other.openPrice
        && one.closeTime == other.closeTime && one.closePrice == other.closePrice && one.net() == other.net();
}

std::string tradeText(const SavedRun& run, std::size_t number)
{
    if (number >= run.trades.size())
        return "no more trades";
    const TradeRow& trade = run.trades[number];
    const std::string& symbol = trade.symbol.empty() ? run.symbol : trade.symbol;
    const int digits = trade.symbol.empty() ? run.digits : trade.digits;
    return "ticket " + std::to_string(trade.ticket) + ", " + std::string(sideText(trade.side)) + ' '
        + practice::decimalText(trade.lots) + ' ' + oneLine(symbol) + ", " + isoTime(trade.openTime) + " at "
        + fixedText(trade.openPrice, digits) + ", " + isoTime(trade.closeTime) + " at "
        + fixedText(trade.closePrice, digits) + ", net " + typeset(practice::decimalText(trade.net()));
}

/// How many characters, not bytes, a text takes in a column.
std::size_t widthOf(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(),
        [](char letter) { return (static_cast<unsigned char>(letter) & 0xC0U) != 0x80U; }));
}

std::string leftPadded(const std::string& text, std::size_t width)
{
    return std::string(width - std::min(width, widthOf(text)), ' ') + text;
}

/// Which runs have simulated prices; empty where none has.
std::string simulatedText(const std::vector<SavedRun>& runs)
{
    std::vector<std::string> names;
    for (const SavedRun& run : runs) {
        if (run.simulated)
            names.push_back(shortened(run.name, 60));
    }
    if (names.empty())
        return {};
    std::string prices = "The prices of " + names.front();
    for (std::size_t number = 1; number < names.size(); ++number)
        prices += (number + 1 < names.size() ? ", " : " and ") + names[number];
    return simulatedWarning(prices);
}

std::string differencePart(const std::vector<SavedRun>& runs)
{
    std::string html;
    const SavedRun& first = runs.front();
    for (std::size_t number = 1; number < runs.size(); ++number) {
        const SavedRun& run = runs[number];
        const auto place = firstDifference(first, run);
        html += "<p>" + escaped(shortened(run.name, 200)) + ": ";
        if (!place) {
            html += "the same " + groupedText(static_cast<double>(run.trades.size()), 0) + " trades as in "
                + escaped(shortened(first.name, 200)) + ".</p>\n";
            continue;
        }
        html += "trade " + groupedText(static_cast<double>(*place + 1), 0)
            + " is the first that differs.</p>\n<ul><li>" + escaped(shortened(first.name, 200)) + ": "
            + escaped(tradeText(first, *place)) + "</li><li>" + escaped(shortened(run.name, 200)) + ": "
            + escaped(tradeText(run, *place)) + "</li></ul>\n";
    }
    return html.empty() ? "<p class=\"note\">One run alone.</p>" : html;
}

std::string figuresPart(const std::vector<SavedRun>& runs)
{
    const Table table = tableOf(runs);
    std::string html = "<div class=\"wide\"><table>\n<caption>Figures side by side; those that differ stand "
                       "out</caption>\n<thead><tr>"
                       "<th scope=\"col\">Figure</th>";
    for (const SavedRun& run : runs)
        html += "<th scope=\"col\" class=\"n\">" + escaped(shortened(run.name, 60)) + "</th>";
    html += "</tr></thead>\n<tbody>\n";
    for (std::size_t line = 0; line < table.names.size(); ++line) {
        const std::vector<std::string>& values = table.values[line];
        const bool areSame = std::all_of(
            values.begin(), values.end(), [&](const std::string& value) { return value == values.front(); });
        html += areSame ? "<tr class=\"same\">" : "<tr>";
        html += "<th scope=\"row\">" + escaped(table.names[line]) + "</th>";
        for (const std::string& value : values)
            html += "<td class=\"n\">" + escaped(value) + "</td>";
        html += "</tr>\n";
    }
    return html + "</tbody>\n</table></div>";
}

/// The curves on the common times of all of them: each has values at its own alone.
std::string curvesData(const std::vector<SavedRun>& runs)
{
    const std::size_t most = std::max<std::size_t>(100, 6'000 / (runs.size() + 1));
    std::vector<std::map<std::int64_t, practice::Cents>> curves;
    std::set<std::int64_t> times;
    for (const SavedRun& run : runs) {
        std::vector<double> values;
        for (const EquityPoint& point : run.equity)
            values.push_back(static_cast<double>(point.equity));
        auto& curve = curves.emplace_back();
        for (const std::size_t place : thinned(values, std::min<std::size_t>(most, 2'000))) {
            const std::int64_t second = practice::floorDivide(run.equity[place].time, 1'000);
            curve[second] = run.equity[place].equity;
            times.insert(second);
        }
    }
    std::string json = "{\"t\":[";
    std::int64_t former = 0;
    for (const std::int64_t time : times) {
        json += (json.back() == '[' ? "" : ",") + std::to_string(time - former);
        former = time;
    }
    json += "],\"curves\":[";
    for (std::size_t number = 0; number < runs.size(); ++number) {
        json += (number > 0 ? ",{\"name\":" : "{\"name\":") + jsonString(shortened(runs[number].name, 60))
            + ",\"equity\":[";
        for (const std::int64_t time : times) {
            const auto found = curves[number].find(time);
            if (json.back() != '[')
                json += ',';
            json += found == curves[number].end() ? "null" : practice::decimalText(found->second);
        }
        json += "]}";
    }
    return json + "]}";
}

} // namespace

std::optional<std::size_t> firstDifference(const SavedRun& one, const SavedRun& other)
{
    const std::size_t common = std::min(one.trades.size(), other.trades.size());
    if (common > 0 && one.symbol != other.symbol)
        return 0;
    for (std::size_t number = 0; number < common; ++number) {
        if (!isSame(one.trades[number], other.trades[number]))
            return number;
    }
    if (one.trades.size() == other.trades.size())
        return std::nullopt;
    return common;
}

std::string compareText(const std::vector<SavedRun>& runs)
{
    const Table table = tableOf(runs);
    std::size_t nameWidth = 0;
    for (const std::string& name : table.names)
        nameWidth = std::max(nameWidth, widthOf(name));
    std::string text = simulatedText(runs);
    text += text.empty() ? "" : "\n\n";
    text += std::string(nameWidth, ' ');
    std::vector<std::size_t> widths;
    for (std::size_t run = 0; run < runs.size(); ++run) {
        const std::string name = shortened(runs[run].name, 40);
        std::size_t width = widthOf(name);
        for (const auto& line : table.values)
            width = std::max(width, widthOf(line[run]));
        widths.push_back(width);
        text += "  " + leftPadded(name, width);
    }
    text += '\n';
    for (std::size_t line = 0; line < table.names.size(); ++line) {
        text += table.names[line] + std::string(nameWidth - widthOf(table.names[line]), ' ');
        for (std::size_t run = 0; run < runs.size(); ++run)
            text += "  " + leftPadded(table.values[line][run], widths[run]);
        text += '\n';
    }
    for (std::size_t run = 1; run < runs.size(); ++run) {
        const std::string pair = oneLine(runs.front().name) + " and " + oneLine(runs[run].name);
        const auto place = firstDifference(runs.front(), runs[run]);
        text += '\n';
        if (!place) {
            text += pair + " have the same " + groupedText(static_cast<double>(runs[run].trades.size()), 0)
                + " trades.\n";
            continue;
        }
        text += pair + " differ from trade " + groupedText(static_cast<double>(*place + 1), 0) + " on:\n";
        text += "  " + tradeText(runs.front(), *place) + "\n  " + tradeText(runs[run], *place) + '\n';
    }
    return text;
}

std::string comparePage(const std::vector<SavedRun>& runs)
{
    std::string title = "Comparison of";
    std::vector<CurveName> curves;
    for (std::size_t number = 0; number < runs.size(); ++number) {
        const std::string name = shortened(runs[number].name, 60);
        if (number < 10)
            title += (number > 0 ? ", " : " ") + name;
        curves.push_back({curveColours[number % curveColours.size()], name});
    }
    if (runs.size() > 10)
        title += " and " + std::to_string(runs.size() - 10) + " more";
    const std::string warning = simulatedText(runs);
    const std::string top = "<h1>" + escaped(title) + "</h1>\n"
        + (warning.empty() ? "" : "<ul class=\"warnings\">\n<li>" + escaped(warning) + "</li>\n</ul>\n");
    const std::string body = pageSection("difference", "Where they part", differencePart(runs))
        + pageSection("curves", "Equity", chartPlace("runs", "Equity of the runs over time", curves))
        + pageSection("figures", "Figures", figuresPart(runs));
    return pageFrame(title, top, body, "{\"runs\":" + curvesData(runs) + "}");
}

} // namespace lab
