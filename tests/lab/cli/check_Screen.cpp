#include "practice/Check.h"

#include "lab/cli/FigureList.h"
#include "lab/cli/Progress.h"
#include "lab/cli/Screen.h"
#include "lab/core/RunResult.h"
#include "lab/core/figures/Figures.h"

#include <sstream>

using namespace std::chrono_literals;

TEST_CASE("progress tells how much is done and how long the rest will take")
{
    CHECK_EQ(lab::progressLine("MA_Cross", 0.25, 30s), "MA_Cross   25 %, 1:30 left");
    CHECK_EQ(lab::progressLine("MA_Cross", 1, 30s), "MA_Cross  100 %, 0:00 left");
    CHECK_EQ(lab::progressLine("MA_Cross", 0.01, 60s), "MA_Cross    1 %, 1:39:00 left");
}

TEST_CASE("progress that has hardly begun makes no guess, and none leaves its line")
{
    CHECK_EQ(lab::progressLine("MA_Cross", 0.001, 1s), "MA_Cross    0 %");
    CHECK_EQ(lab::progressLine("MA_Cross", -3, 1s), "MA_Cross    0 %");
    CHECK_EQ(lab::progressLine("MA_Cross", 7, 1s), "MA_Cross  100 %, 0:00 left");
    CHECK(lab::progressLine(std::string(500, 'x'), 0.5, 100h).size() < 80);
}

TEST_CASE("columns are as wide as their widest word, in characters")
{
    CHECK_EQ(lab::columns({{"a", "1"}, {"größer", "−22", "end"}}, {1}), "a         1\ngrößer  −22  end\n");
    CHECK_EQ(lab::columns({}), "");
}

TEST_CASE("long lines are broken at blanks")
{
    CHECK_EQ(lab::wrapped("one two three", 7, "  "), "one two\n  three");
    CHECK_EQ(lab::wrapped("incomprehensible", 5, "  "), "incomprehensible");
    CHECK_EQ(lab::wrapped("lost 13.7 % of it", 9, ""), "lost\n13.7 % of\nit");
    CHECK_EQ(lab::wrapped("", 5, "  "), "");
}

TEST_CASE("without colours a text stays as it is")
{
    CHECK_EQ(lab::toned("fine", lab::Tone::Good, false), "fine");
    CHECK_EQ(lab::toned("fine", lab::Tone::Good, true), "\x1b[32mfine\x1b[0m");
    CHECK_EQ(lab::toned("fine", lab::Tone::Plain, true), "fine");
}

TEST_CASE("the list of figures fits a terminal and shows a dash for what is undefined")
{
    lab::RunResult result;
    result.startBalance = 10'000'000;
    result.warnings = {std::string(30, 'w') + ' ' + std::string(60, 'x') + "\x1b[31m\n"};
    const std::string text = lab::figureList(result, lab::figuresOf(result), false);
    CHECK(text.find("–") != std::string::npos);
    CHECK(text.find('\x1b') == std::string::npos);
    CHECK(text.find("\n! www") != std::string::npos);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        CHECK(lab::placesOf(line) <= 80);
}

TEST_CASE("the days that a year is reckoned to have stand on the terminal")
{
    lab::RunResult result;
    CHECK(
        lab::figureList(result, lab::figuresOf(result), false).find("Days a year (A)") != std::string::npos);
}

CHECK_MAIN()
