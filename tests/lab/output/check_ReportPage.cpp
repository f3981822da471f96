#include "GeneratedRun.h"
#include "lab/core/figures/FigureTable.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/output/PageTexts.h"
#include "lab/core/output/ReportPage.h"
#include "lab/core/output/Texts.h"
#include "practice/Check.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <clocale>
#include <ctime>
#include <locale>

using namespace lab;
using samples::generatedRun;
using samples::smallRun;

namespace {

const ReportWords words{"moving_average.js", {}};

std::string pageOf(const RunResult& run)
{
    return reportPage(run, figuresOf(run), words);
}

std::size_t countOf(std::string_view text, std::string_view part)
{
    std::size_t count = 0;
    for (std::size_t place = text.find(part); place != std::string_view::npos;
         place = text.find(part, place + 1))
        ++count;
    return count;
}

bool has(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

/// The page without what was in it before any run: library, script and style.
std::string withoutFixedTexts(std::string page)
{
    for (const std::string_view text : {chartLibrary, chartLibraryStyle, pageScript, pageStyle}) {
        const std::size_t place = page.find(text);
        if (place != std::string::npos)
            page.erase(place, text.size());
    }
    return page;
}

nlohmann::json dataOf(const std::string& page)
{
    const std::string_view start = "<script type=\"application/json\" id=\"data\">";
    const std::size_t from = page.find(start) + start.size();
    return nlohmann::json::parse(page.substr(from, page.find("</script>", from) - from));
}

/// The value of a colour of the style sheet, from this place on.
unsigned colourOf(std::string_view style, std::string_view name, std::size_t from)
{
    const std::size_t place = style.find("  " + std::string(name) + ": #", from);
    return static_cast<unsigned>(
        std::stoul(std::string(style.substr(style.find('#', place) + 1, 6)), nullptr, 16));
}

double luminance(unsigned colour)
{
    const auto part = [colour](unsigned shift) {
        const double value = ((colour >> shift) & 255U) / 255.0;
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(16) + 0.7152 * part(8) + 0.0722 * part(0);
}

double contrast(unsigned one, unsigned other)
{
    const double first = luminance(one);
    const double second = luminance(other);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

/// Writes decimals with a comma and groups with a point, as some countries do.
class ForeignNumbers final : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

} // namespace

TEST_CASE("the parts of a page have their order, the verdict first and a study's own behind the figures")
{
    RunResult run = smallRun();
    run.warnings = {"look out"};
    const std::string page = reportPage(run, figuresOf(run), {"moving_average.js", {"<p>a map</p>"}});
    std::size_t former = 0;
    for (const char* part :
        {"<h1>moving_average.js on EURUSD 15m</h1>", "id=\"verdict\"", "<ul class=\"warnings\">",
            "<li>look out</li>", "class=\"verdict\"", "id=\"settings\"", "id=\"figures\"", "<p>a map</p>",
            "id=\"balance\"", "id=\"fall\"", "id=\"months\"", "id=\"returns\"", "id=\"week\"",
            "id=\"drawdowns\"", "id=\"excursions\"", "id=\"bars\"", "id=\"trades\"", "id=\"journal\""}) {
        const std::size_t place = page.find(part);
        CHECK(place != std::string::npos);
        CHECK(place > former);
        former = place;
    }
}

TEST_CASE("each figure stands beside its formula, a dash for an undefined one")
{
    RunResult run = smallRun();
    const std::string page = pageOf(run);
    CHECK(has(page,
        "<th scope=\"row\">Net profit</th><td class=\"n\">\xE2\x88\x92"
        "58.92</td><td class=\"formula\">\xCE\xA3 net"));
    run.trades.clear();
    CHECK(has(pageOf(run),
        "<th scope=\"row\">Payoff</th><td class=\"n\">\xE2\x80\x93</td><td class=\"formula\">mean win / mean "
        "loss<br><span class=\"why\">\xE2\x80\x93: needs a trade</span></td>"));
}

TEST_CASE("every figure has its line on the page, with name and formula, in the order of the table")
{
    const std::string page = pageOf(smallRun());
    std::size_t place = page.find("id=\"figures\"");
    for (const FigureRow& row : figureRows()) {
        const std::string line = "<th scope=\"row\">" + escaped(row.name) + "</th><td class=\"n\">";
        place = page.find(line, place);
        REQUIRE(place != std::string::npos);
        const std::string_view rest = std::string_view(page).substr(place, page.find("</tr>", place) - place);
        CHECK(has(rest, "</td><td class=\"formula\">" + escaped(row.formula)));
    }
    CHECK(has(page, "Days a year (A)</th><td class=\"n\">252</td>"));
    RunResult run = smallRun();
    run.weekendsTrade = true;
    CHECK(has(pageOf(run), "Days a year (A)</th><td class=\"n\">365</td>"));
}

TEST_CASE("whatever is undefined says why, in tiles and figures")
{
    RunResult lost = smallRun();
    lost.trades.erase(lost.trades.begin());
    RunResult won = smallRun();
    won.trades.pop_back();
    RunResult history = smallRun();
    history.closedTradesOnly = true;
    for (const RunResult& run : {smallRun(), RunResult(), lost, won, history}) {
        const std::string page = withoutFixedTexts(pageOf(run));
        const std::size_t dashes = countOf(page, "<td class=\"n\">\xE2\x80\x93</td><td class=\"formula\">");
        CHECK(dashes > 0);
        CHECK_EQ(dashes, countOf(page, "<span class=\"why\">\xE2\x80\x93: "));
        CHECK_EQ(countOf(page, "<dd>\xE2\x80\x93<small>"), countOf(page, "<dd>\xE2\x80\x93"));
    }
    CHECK(has(pageOf(won), "<dt>Profit factor</dt><dd>\xE2\x80\x93<small>needs a losing trade</small></dd>"));
    CHECK(has(pageOf(lost), "\xE2\x80\x93: needs a winning trade</span>"));
    CHECK(has(pageOf(RunResult()), "\xE2\x80\x93: needs at least two days with prices</span>"));
    CHECK(has(pageOf(smallRun()), "\xE2\x80\x93: only an account under plan rules has such a limit</span>"));
    CHECK(has(pageOf(history), "\xE2\x80\x93: not known without prices</span>"));
}

TEST_CASE("the reasons of closings are told in plain words below the trades")
{
    const std::string page = pageOf(smallRun());
    const std::size_t list = page.find("id=\"trades\"");
    const std::size_t journal = page.find("id=\"journal\"");
    for (const char* reason : {"<dt>SL</dt><dd>its stop loss was reached",
             "<dt>TP</dt><dd>its take profit was reached", "<dt>SCRIPT</dt><dd>the script closed it",
             "<dt>END</dt><dd>it was still open at the end", "<dt>MARGIN</dt><dd>too little margin was left",
             "<dt>RULE</dt><dd>a rule of the plan was broken"}) {
        CHECK(page.find(reason) > list);
        CHECK(page.find(reason) < journal);
    }
    RunResult history = smallRun();
    history.closedTradesOnly = true;
    CHECK(has(pageOf(history), "<dt>MANUAL</dt><dd>a person or a script closed it</dd>"));
    CHECK(!has(pageOf(history), "<dt>SCRIPT</dt>"));
    CHECK(!has(pageOf(history), "<dt>END</dt>"));
}

TEST_CASE("what the points of the equity curves are stands below them")
{
    CHECK(has(pageOf(smallRun()), "a point where the balance has changed and at the end of each UTC day; "));
    CHECK(has(pageOf(smallRun()), "the pale line is the lowest equity of each UTC day, on every price."));
    RunResult history = smallRun();
    history.closedTradesOnly = true;
    CHECK(!has(pageOf(history), "lowest equity of each"));
    CHECK(has(
        pageOf(generatedRun(2'000, 50, 3'000)), "UTC day, neighbours joined by their highest and lowest; "));
}

TEST_CASE("the settings tell what else the prices hang on")
{
    RunResult run = smallRun();
    run.settings.speed = 2.5;
    for (const Model model : {Model::Open, Model::Ohlc, Model::Path, Model::Feed}) {
        run.settings.model = model;
        CHECK_EQ(has(pageOf(run), ">High and low<"), model == Model::Open || model == Model::Ohlc);
    }
    CHECK(!has(pageOf(run), "at speed"));
    run.simulated = true;
    CHECK(has(pageOf(run), ">simulated at speed 2.5<"));
}

TEST_CASE("nothing that a script or file says becomes markup")
{
    const std::string evil = "</script><img src=x onerror=alert(1)>\"'<!--";
    RunResult run = smallRun();
    run.settings.symbol = evil;
    run.settings.inputs = {{evil, evil}};
    run.journal = {{samples::monday, evil}};
    run.warnings = {evil};
    run.error = evil;
    const std::string page = reportPage(run, figuresOf(run), {evil, {}});
    CHECK(!has(page, "<img"));
    CHECK(!has(withoutFixedTexts(page), "<!--"));
    CHECK_EQ(countOf(page, "</script>"), 3U);
    CHECK_EQ(countOf(page, "<script"), 3U);
    CHECK(has(page, "&lt;/script&gt;&lt;img src=x onerror=alert(1)&gt;&quot;&#39;&lt;!--"));
}

TEST_CASE("a page loads nothing")
{
    const std::string page = pageOf(generatedRun(2'000, 50, 0));
    CHECK_EQ(countOf(page, "http://"), 0U);
    CHECK_EQ(countOf(page, "https://"), 1U);
    CHECK(has(page, "/*! https://github.com/leeoniya/uPlot (v1.6.32) */"));
    const std::string own = withoutFixedTexts(page);
    for (const char* part : {"src=", "href=", "url(", "@import", "<link", "<iframe", "<object"})
        CHECK(!has(own, part));
    CHECK(has(own, "default-src 'none'"));
    for (const char* part : {"fetch(", "XMLHttpRequest", "WebSocket", "sendBeacon", "import("})
        CHECK(!has(page, part));
}

TEST_CASE("a long run makes a page of three megabytes at most")
{
    RunResult run = generatedRun(500'000, 100'000, 1'000'000);
    for (JournalLine& line : run.journal)
        line.text = std::string(1'000, '&');
    run.warnings.assign(10'000, std::string(10'000, '<'));
    run.settings.inputs.assign(10'000, {std::string(5'000, '"'), std::string(5'000, '<')});
    const std::string page = pageOf(run);
    CHECK(page.size() <= maxPageBytes);
    CHECK(page.size() > 500'000);
    CHECK(has(page, "98,000 earlier trades are left out"));
    const auto data = dataOf(page);
    for (const char* key : {"t", "equity", "balance"})
        CHECK(data.at("equity").at(key).size() <= 2'000);
    CHECK(data.at("equity").at("t").size() > 900);
    CHECK(data.at("drawdown").at("fall").size() <= 2'000);
    CHECK(data.at("bars").at("close").size() <= 12'000);
    CHECK(has(page, "earlier ones are left out here, journal.txt has all of them"));
    run.journalLeftOut = 211;
    CHECK(!has(pageOf(run), "journal.txt has all of them"));
    CHECK(has(pageOf(run), "earlier ones are left out here, journal.txt has those that were kept"));
}

TEST_CASE("a long run makes room for further parts")
{
    RunResult run = generatedRun(50'000, 10'000, 0);
    for (JournalLine& line : run.journal)
        line.text = std::string(1'000, '&');
    const std::string part = "<p>" + std::string(maxPageBytes / 2, 'x') + "</p>";
    CHECK(pageOf(run).size() + part.size() > maxPageBytes);
    const std::string page = reportPage(run, figuresOf(run), {"a.js", {part}});
    CHECK(page.size() <= maxPageBytes);
    CHECK(has(page, part));
    CHECK(has(page, "9,000 earlier trades are left out"));
}

TEST_CASE("parts that would make a page too long are left out with a word")
{
    const RunResult run = smallRun();
    const std::string huge(maxPageBytes, 'x');
    const std::string page = reportPage(run, figuresOf(run), {"a.js", {"<p>short</p>", huge}});
    CHECK(page.size() <= maxPageBytes);
    CHECK(has(page, "Further parts are too long for this page."));
    CHECK(has(reportPage(run, figuresOf(run), {"a.js", {"<p>short</p>"}}), "<p>short</p>"));
}

TEST_CASE("thinned curves keep the highest and the lowest equity")
{
    RunResult run = generatedRun(5'000, 100, 100'000);
    run.equity[77'777].equity = 99'999'999;
    run.equity[33'333].equity = 1'234;
    const auto equity = dataOf(pageOf(run)).at("equity").at("equity");
    CHECK_EQ(std::ranges::max(equity.get<std::vector<double>>()), 999'999.99);
    CHECK_EQ(std::ranges::min(equity.get<std::vector<double>>()), 12.34);
}

TEST_CASE("the lowest equity of each day reaches the chart, from the run's first moment on")
{
    RunResult run = smallRun();
    run.equity.front().time += 90'000;
    const auto lows = dataOf(pageOf(run)).at("lows");
    CHECK_EQ(lows.at("t").dump(), "[1704067290,86310]"); // 00:01:30 and midnight
    CHECK_EQ(lows.at("low").dump(), "[99987.99,99941.08]");
    run.closedTradesOnly = true;
    CHECK(!dataOf(pageOf(run)).contains("lows"));
    CHECK(dataOf(pageOf(generatedRun(500'000, 10, 100))).at("lows").at("t").size() <= 2'000);
}

TEST_CASE("bars and trades reach the charts as they are")
{
    const auto data = dataOf(pageOf(smallRun()));
    CHECK_EQ(data.at("digits"), 5);
    const auto& bars = data.at("bars");
    CHECK_EQ(bars.at("t").size(), 192U);
    CHECK_EQ(bars.at("t").at(0), 1'704'067'200);
    CHECK_EQ(bars.at("t").at(1), 900);
    CHECK_EQ(bars.at("close").at(0), 110'020);
    CHECK_EQ(bars.at("close").at(1), 5);
    CHECK_EQ(bars.at("open").at(0), -20);
    CHECK_EQ(bars.at("high").at(0), 20);
    CHECK_EQ(bars.at("low").at(0), 50);
    CHECK_EQ(data.at("trades").at(1).dump(), "[2,0,1704157200,1.105,1704160800,1.10605,-108.5]");
}

TEST_CASE("a run without anything makes a page")
{
    const std::string page = pageOf(RunResult());
    CHECK(has(page, "No trades."));
    CHECK(has(page, "The script has printed nothing."));
    CHECK(!has(page, "nan"));
    CHECK_EQ(dataOf(page).dump(), "{\"digits\":5,\"trades\":[]}");
}

TEST_CASE("the same run gives the same bytes whatever the locale and the time zone")
{
    const RunResult run = generatedRun(3'000, 60, 5'000);
    const std::string page = pageOf(run);
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new ForeignNumbers));
    const char* const found = std::setlocale(LC_ALL, "de_DE.UTF-8");
    ::setenv("TZ", "Asia/Kathmandu", 1);
    ::tzset();
    const std::string other = pageOf(run);
    std::locale::global(former);
    std::setlocale(LC_ALL, "C");
    CHECK(page == other);
    if (!found)
        std::cout << "  de_DE.UTF-8 is not installed; the C++ locale alone was foreign\n";
}

TEST_CASE("texts stand out from what is behind them, light and dark")
{
    const std::size_t dark = pageStyle.find("prefers-color-scheme: dark");
    REQUIRE(dark != std::string_view::npos);
    for (const std::size_t from : {std::size_t{0}, dark}) {
        for (const char* behind : {"--card", "--page", "--soft"}) {
            for (const char* text : {"--text", "--muted", "--gain", "--loss"})
                CHECK(contrast(colourOf(pageStyle, text, from), colourOf(pageStyle, behind, from)) >= 4.5);
        }
        CHECK(contrast(colourOf(pageStyle, "--warn", from), colourOf(pageStyle, "--warn-page", from)) >= 4.5);
        for (const char* curve : {"--accent", "--second"})
            CHECK(contrast(colourOf(pageStyle, curve, from), colourOf(pageStyle, "--card", from)) >= 3);
    }
}

TEST_CASE("tables have captions and their heads a scope")
{
    const std::string page = withoutFixedTexts(pageOf(generatedRun(2'000, 50, 0)));
    CHECK(countOf(page, "<table") > 8);
    CHECK_EQ(countOf(page, "<table"), countOf(page, "<caption"));
    CHECK_EQ(countOf(page, "<th scope=\"") + countOf(page, "<thead"), countOf(page, "<th"));
    CHECK_EQ(countOf(page, "<section"), countOf(page, "<h2>"));
    CHECK_EQ(countOf(page, "<h1>"), 1U);
}

CHECK_MAIN()
