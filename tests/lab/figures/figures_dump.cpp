// Reads runs and study questions as words on standard input and prints what the lab makes of them, for
// figures_check.py to compare with what it has worked out itself. Numbers are printed so that reading them
// gives the same double; what is undefined is printed as "null". Each answer ends with a line "end".

#include "lab/core/figures/DrawdownSpans.h"
#include "lab/core/figures/FigureTable.h"
#include "lab/core/figures/ReportSeries.h"
#include "lab/core/figures/StableMath.h"
#include "lab/core/figures/StudyStatistics.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

template <typename T> T word()
{
    T value{};
    if (!(std::cin >> value))
        throw std::runtime_error("a word is missing or of the wrong kind");
    return value;
}

std::vector<double> numbers()
{
    std::vector<double> list(word<std::size_t>());
    for (double& number : list)
        number = word<double>();
    return list;
}

void print(const lab::Figure& figure)
{
    if (!figure) {
        std::cout << " null";
        return;
    }
    std::array<char, 40> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), *figure);
    std::cout << ' ' << std::string_view(text.data(), static_cast<std::size_t>(end.ptr - text.data()));
}

template <typename... Numbers> void printLine(std::string_view name, Numbers... figures)
{
    std::cout << name;
    (print(figures), ...);
    std::cout << '\n';
}

lab::TradeRow readTrade()
{
    lab::TradeRow trade;
    trade.ticket = word<int>();
    trade.side = word<std::string>() == "BUY" ? practice::Side::Buy : practice::Side::Sell;
    trade.openTime = word<practice::TimeMs>();
    trade.closeTime = word<practice::TimeMs>();
    trade.profit = word<practice::Cents>();
    trade.commission = word<practice::Cents>();
    trade.swap = word<practice::Cents>();
    trade.spreadCost = word<practice::Cents>();
    trade.ambiguous = word<bool>();
    return trade;
}

lab::RunResult readRun()
{
    lab::RunResult result;
    result.startBalance = word<practice::Cents>();
    result.weekendsTrade = word<bool>();
    result.settings.rules = word<bool>() ? lab::AccountRules::Plan : lab::AccountRules::Demo;
    result.settings.from = word<practice::TimeMs>();
    result.settings.to = word<practice::TimeMs>();
    result.bars = word<std::uint64_t>();
    result.ticks = word<std::uint64_t>();
    result.exposedMs = word<practice::TimeMs>();
    result.refusals = word<std::uint64_t>();
    result.firstPrice = word<double>();
    result.lastPrice = word<double>();
    result.equityDrawdown.fraction = word<double>();
    result.equityDrawdown.money = word<practice::Cents>();
    result.balanceDrawdown.fraction = word<double>();
    for (std::string kind = word<std::string>(); kind != "end"; kind = word<std::string>()) {
        if (kind == "day") {
            lab::DayRow day;
            day.day = word<std::int32_t>();
            day.balance = word<practice::Cents>();
            day.equity = word<practice::Cents>();
            day.firstEquity = word<practice::Cents>();
            day.lowestEquity = word<practice::Cents>();
            result.days.push_back(day);
        } else if (kind == "point") {
            lab::EquityPoint point;
            point.time = word<practice::TimeMs>();
            point.balance = word<practice::Cents>();
            point.equity = word<practice::Cents>();
            result.equity.push_back(point);
        } else if (kind == "trade") {
            result.trades.push_back(readTrade());
        } else {
            throw std::runtime_error("unknown: " + kind);
        }
    }
    return result;
}

double whole(std::int64_t number)
{
    return static_cast<double>(number);
}

template <typename Table> void printSlots(std::string_view name, const Table& table)
{
    for (const lab::TimeSlot& slot : table)
        printLine(name, whole(slot.trades), whole(slot.wins), whole(slot.net));
}

void answerRun()
{
    const lab::RunResult result = readRun();
    const lab::Figures figures = lab::figuresOf(result);
    for (const lab::FigureRow& row : lab::figureRows())
        printLine(row.key, row.of(figures));
    for (const lab::DrawdownSpan& span : lab::worstDrawdowns(result)) {
        const lab::Figure recovered = span.recoveredDay ? lab::Figure(*span.recoveredDay) : lab::Figure();
        printLine(
            "span", whole(span.peakDay), whole(span.bottomDay), recovered, span.depth, whole(span.days));
    }
    for (const lab::YearRow& year : lab::monthlyTable(result)) {
        for (std::size_t month = 0; month < year.months.size(); ++month)
            printLine(
                "month", whole(year.year), whole(static_cast<std::int64_t>(month) + 1), year.months[month]);
        printLine("year", whole(year.year), year.whole);
    }
    for (const lab::HistogramBin& bin : lab::returnHistogram(result))
        printLine("bin", bin.from, bin.to, static_cast<double>(bin.count));
    printSlots("weekday", lab::weekdayTable(result));
    printSlots("hour", lab::hourTable(result));
}

void answerMatrix()
{
    const auto blocks = word<std::size_t>();
    lab::ReturnMatrix matrix;
    matrix.days = word<std::size_t>();
    matrix.trials = word<std::size_t>();
    matrix.values = numbers();
    printLine("pbo", lab::overfittingProbability(matrix, blocks));
}

void answerDeflated()
{
    const auto trials = word<std::size_t>();
    const std::vector<double> sharpes = numbers();
    printLine("dsr", lab::deflatedSharpe(numbers(), sharpes, trials));
}

void answerWilson()
{
    const auto hits = word<std::size_t>();
    if (const auto range = lab::wilsonInterval(hits, word<std::size_t>()))
        printLine("wilson", range->share, range->low, range->high);
}

void answerGrid()
{
    std::vector<std::size_t> sizes(word<std::size_t>());
    for (std::size_t& size : sizes)
        size = word<std::size_t>();
    std::vector<lab::Figure> values(word<std::size_t>());
    for (lab::Figure& value : values) {
        const auto text = word<std::string>();
        if (text != "null")
            value = std::stod(text);
    }
    for (const lab::Figure& stability : lab::neighbourhoodStability(sizes, values))
        printLine("stability", stability);
}

void answerMath()
{
    for (const double number : numbers()) {
        const double share = number / (1 + number);
        printLine("math", lab::stable::logarithm(number), lab::stable::exponential(number - 3),
            lab::stable::power(number, 1.7), lab::stable::normalShare(number - 5),
            lab::stable::normalQuantile(share));
    }
}

bool answer(const std::string& question)
{
    if (question == "run")
        answerRun();
    else if (question == "matrix")
        answerMatrix();
    else if (question == "deflated")
        answerDeflated();
    else if (question == "wilson")
        answerWilson();
    else if (question == "grid")
        answerGrid();
    else if (question == "math")
        answerMath();
    else
        return false;
    std::cout << "end\n";
    return true;
}

} // namespace

int main()
{
    try {
        for (std::string question; std::cin >> question;) {
            if (!answer(question))
                throw std::runtime_error("unknown: " + question);
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
