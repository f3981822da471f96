#include "practice/Check.h"

#include "practice/core/market/HashRandom.h"
#include "practice/core/market/MinuteFile.h"

#include <algorithm>
#include <array>
#include <locale>
#include <sstream>
#include <vector>

using namespace practice;

namespace {

const std::string header = "time,open,high,low,close,volume\n";
const std::string askHeader = "time,open,high,low,close,volume,ask_open,ask_high,ask_low,ask_close\n";
const std::string firstRow = "2014-05-01T00:00:00Z,1.1,1.3,1.0,1.2,5\n";

class CommaNumbers final : public std::numpunct<char> {
    [[nodiscard]] char do_decimal_point() const override { return ','; }
    [[nodiscard]] char do_thousands_sep() const override { return '.'; }
    [[nodiscard]] std::string do_grouping() const override { return "\3"; }
};

MinuteFile parsed(const std::string& text)
{
    std::istringstream input(text);
    return readMinutes(input, "X-1m.csv");
}

std::string complaint(const std::string& text)
{
    try {
        static_cast<void>(parsed(text));
    } catch (const MarketDataError& error) {
        return error.what();
    }
    return "accepted";
}

std::string complaintAboutRow(const std::string& row)
{
    return complaint(header + firstRow + row + "\n");
}

} // namespace

TEST_CASE("minutes are read exactly, in points of the most decimals used")
{
    const MinuteFile file = parsed(header + firstRow + "2014-05-01T00:02:00Z,1.25,1.255,1.2,1.21,2.6");
    CHECK_EQ(file.digits, 3);
    REQUIRE(file.minutes.size() == 2);
    CHECK_EQ(file.firstTime, TimeMs(1'398'902'400'000));
    CHECK_EQ(file.lastTime, file.firstTime + 2 * minuteMs);
    CHECK(file.times == (std::vector<TimeMs>{file.firstTime, file.lastTime}));
    CHECK(file.minutes.at(0).bar == (GridBar{1100, 1300, 1000, 1200, 5}));
    CHECK(file.minutes.at(1).bar == (GridBar{1250, 1255, 1200, 1210, 3}));
    CHECK(!file.minutes.at(0).halfSpread.areRecorded());
}

TEST_CASE("with ask columns the mid lies between both sides and each price has its spread")
{
    const MinuteFile file
        = parsed(askHeader + "2014-05-01T00:00:00Z,1.10,1.30,1.00,1.20,0,1.14,1.34,1.04,1.26\n"
            + "2014-05-01T00:01:00Z,1.20,1.20,1.20,1.20,0,1.20,1.20,1.20,1.20\n");
    CHECK_EQ(file.minutes.at(0).bar.open, std::int64_t(112));
    CHECK_EQ(file.minutes.at(0).bar.high, std::int64_t(132));
    CHECK_EQ(file.minutes.at(0).bar.low, std::int64_t(102));
    CHECK_EQ(file.minutes.at(0).bar.close, std::int64_t(123));
    CHECK(file.minutes.at(0).halfSpread == HalfSpreads(2, 2, 2, 3));
    CHECK(file.minutes.at(1).halfSpread == HalfSpreads(1));
    CHECK(file.minutes.at(0).bar.volume >= 1 && file.minutes.at(1).bar.volume >= 1);
}

TEST_CASE("an odd spread is rounded up, at the bid's cost")
{
    // 11 points at the open, 1 at the high, 13 at the low, 12 at the close.
    const MinuteFile file
        = parsed(askHeader + "2014-05-01T00:00:00Z,1.120,1.130,1.100,1.119,1,1.131,1.131,1.113,1.131\n"
            + "2014-05-01T00:01:00Z,0.001,0.003,0.001,0.001,1,0.004,0.006,0.001,0.002\n");
    CHECK(file.minutes.at(0).bar == (GridBar{1125, 1130, 1106, 1125, 1}));
    CHECK(file.minutes.at(0).halfSpread == HalfSpreads(6, 1, 7, 6));
    CHECK(file.minutes.at(1).bar == (GridBar{3, 4, 2, 2, 1})); // there is no bid of nothing
    CHECK(file.minutes.at(1).halfSpread == HalfSpreads(2, 2, 1, 1));
}

TEST_CASE("neither side of any recorded price becomes better, nor worse by more than a point")
{
    HashRandom random(3);
    const auto draw = [&random](int range) { return static_cast<std::int64_t>(random.uniform() * range); };
    constexpr std::size_t count = 1000;
    std::string text = askHeader;
    std::vector<std::array<GridBar, 2>> recorded;
    for (std::size_t minute = 0; minute < count; ++minute) {
        std::array<GridBar, 2> sides;
        GridBar& bid = sides[0];
        GridBar& ask = sides[1];
        const int range = minute % 2 == 0 ? 3 : 40; // corners that fall together, and others
        bid = {1000 + draw(range), 0, 0, 1000 + draw(range), 0};
        bid.high = std::max(bid.open, bid.close) + draw(range);
        bid.low = std::min(bid.open, bid.close) - draw(range);
        ask = {bid.open + draw(range), 0, 0, bid.close + draw(range), 0};
        ask.high = std::max({ask.open, ask.close, bid.high}) + draw(range);
        ask.low = std::max(bid.low, std::min(ask.open, ask.close) - draw(range));
        recorded.push_back(sides);
        const auto two = [](std::size_t number) { return std::to_string(100 + number).substr(1); };
        const auto side = [](const GridBar& bar) {
            return ',' + std::to_string(bar.open) + ',' + std::to_string(bar.high) + ','
                + std::to_string(bar.low) + ',' + std::to_string(bar.close);
        };
        text += "2014-05-01T" + two(minute / 60) + ':' + two(minute % 60) + ":00Z" + side(bid) + ",1"
            + side(ask) + '\n';
    }
    const MinuteFile file = parsed(text);
    std::size_t wrong = 0;
    std::size_t exact = 0;
    const auto compare = [&](std::int64_t mid, std::int64_t half, std::int64_t bid, std::int64_t ask) {
        wrong += half >= 1 && bid - 1 <= mid - half && mid - half <= bid && ask <= mid + half
                && mid + half <= ask + 1
            ? 0
            : 1;
        exact += mid - half == bid && mid + half == ask ? 1 : 0;
    };
    for (std::size_t minute = 0; minute < count; ++minute) {
        const MinuteRecord read = file.minutes.at(minute);
        const auto& [bid, ask] = recorded[minute];
        compare(read.bar.open, read.halfSpread.open, bid.open, ask.open);
        compare(read.bar.high, read.halfSpread.high, bid.high, ask.high);
        compare(read.bar.low, read.halfSpread.low, bid.low, ask.low);
        compare(read.bar.close, read.halfSpread.close, bid.close, ask.close);
    }
    CHECK_EQ(wrong, std::size_t(0));
    CHECK(exact > count);
}

TEST_CASE("lines may end as on other systems and times may lie before 1970")
{
    const MinuteFile file = parsed("time,open,high,low,close,volume\r\n1969-12-31T23:58:00Z,1,1,1,1,1\r\n"
                                   "1969-12-31T23:59:00Z,1,2,1,2,1\r\n");
    CHECK_EQ(file.digits, 0);
    CHECK_EQ(file.firstTime, -2 * minuteMs);
    CHECK_EQ(file.lastTime, -minuteMs);
}

TEST_CASE("a byte order mark before the header and blank lines at the end are nothing to complain about")
{
    const std::string row = "2014-05-01T00:02:00Z,1.25,1.255,1.2,1.21,2.6\n";
    const MinuteFile plain = parsed(header + firstRow + row);
    for (const std::string& text : {"\xEF\xBB\xBF" + header + firstRow + row, header + firstRow + row + "\n",
             header + firstRow + row + "\r\n \t\r\n\n", "\xEF\xBB\xBF" + header + firstRow + row + "\n\n"}) {
        CHECK_EQ(complaint(text), std::string("accepted"));
        CHECK_EQ(parsed(text).minutes.size(), plain.minutes.size());
        CHECK(parsed(text).minutes.at(1).bar == plain.minutes.at(1).bar);
    }
    CHECK_EQ(complaint(header + firstRow + "\n\n" + row), std::string("X-1m.csv:3: the line is empty"));
    CHECK(complaint("\n" + header + firstRow + row).starts_with("X-1m.csv:1: "));
    CHECK(complaint("\xEF\xBB\xBF\xEF\xBB\xBF" + header + firstRow + row).starts_with("X-1m.csv:1: "));
}

TEST_CASE("a locale with a decimal comma and grouped digits changes neither prices nor complaints")
{
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
    const MinuteFile file = parsed(header + firstRow + "2014-05-01T00:01:00Z,1234.5,1234.5,1.2,1.2,1.5\n");
    std::string rows = header;
    for (int minute = 0; minute < 1200; ++minute)
        rows += "2014-05-01T" + std::to_string(100 + minute / 60).substr(1) + ':'
            + std::to_string(100 + minute % 60).substr(1) + ":00Z,1,1,1,1,1\n";
    const std::string text = complaint(rows + "x,1,1,1,1,1\n");
    std::locale::global(before);
    CHECK_EQ(file.minutes.at(1).bar.open, std::int64_t(12345));
    CHECK_EQ(file.minutes.at(1).bar.volume, std::int64_t(2));
    CHECK_EQ(text, std::string("X-1m.csv:1202: the time is not like 2014-05-01T00:00:00Z"));
}

TEST_CASE("a complaint is one line with the file and the line to blame")
{
    CHECK_EQ(complaintAboutRow("2014-05-01T00:01:00Z,1.2,1.1,1.0,1.2,1"),
        std::string("X-1m.csv:3: high is below open or close"));
    CHECK_EQ(complaintAboutRow("2014-05-01T00:01:00Z,1.2,1.3,1.25,1.3,1"),
        std::string("X-1m.csv:3: low is above open or close"));
    CHECK_EQ(complaintAboutRow("2014-05-01T00:00:00Z,1,1,1,1,1"),
        std::string("X-1m.csv:3: the time is not after the line before"));
    CHECK_EQ(complaintAboutRow("2014-05-01T00:01:30Z,1,1,1,1,1"),
        std::string("X-1m.csv:3: the time is not a whole minute"));
    CHECK_EQ(complaintAboutRow("2014-05-01T00:01:00Z,1,1,1,1"),
        std::string("X-1m.csv:3: expected 6 columns, found 5"));
    CHECK_EQ(complaintAboutRow("one"), std::string("X-1m.csv:3: expected 6 columns, found 1"));
    CHECK_EQ(complaint(header + firstRow), std::string("X-1m.csv:2: fewer than two minutes"));
}

TEST_CASE("times that are no times are refused")
{
    for (const char* time : {"2014-05-01 00:01:00Z", "2014-02-30T00:01:00Z", "2014-05-01T24:01:00Z", "",
             "2014-05-01T00:61:00Z", "2014-05-01T00:01:00", "+014-05-01T00:01:00Z", "2014-05-01T00:-1:00Z"})
        CHECK_EQ(complaintAboutRow(std::string(time) + ",1,1,1,1,1"),
            std::string("X-1m.csv:3: the time is not like 2014-05-01T00:00:00Z"));
}

TEST_CASE("prices that are no plain positive decimals are refused")
{
    for (const char* price : {"", "0", "0.000", "-1", "+1", "1e3", "nan", "inf", "1.", ".5", "1.123456789",
             " 1", "1,2", "12345678", "0x1"})
        CHECK(complaintAboutRow("2014-05-01T00:01:00Z," + std::string(price) + ",1,1,1,1")
                  .starts_with("X-1m.csv:3: "));
    CHECK_EQ(complaintAboutRow("2014-05-01T00:01:00Z,x,1,1,1,1"),
        std::string("X-1m.csv:3: a price is not a plain decimal above 0"));
}

TEST_CASE("volumes that are no numbers from 0 are refused")
{
    for (const char* volume : {"", "-1", "nan", "inf", "1e300", "5 ", "five"})
        CHECK_EQ(complaintAboutRow("2014-05-01T00:01:00Z,1,1,1,1," + std::string(volume)),
            std::string("X-1m.csv:3: the volume is not a number from 0"));
}

TEST_CASE("an ask below its bid is refused")
{
    CHECK_EQ(complaint(askHeader + "2014-05-01T00:00:00Z,2,2,2,2,0,2,2,1,1\n"),
        std::string("X-1m.csv:2: an ask is below its bid"));
}

TEST_CASE("another header is refused, an empty file too")
{
    const std::string expected
        = "X-1m.csv:1: the header is not \"time,open,high,low,close,volume\" with or without the ask columns";
    CHECK_EQ(complaint(""), expected);
    CHECK_EQ(complaint("time;open;high;low;close;volume\n"), expected);
    CHECK_EQ(complaint(firstRow + firstRow), expected);
}

TEST_CASE("times are right around midnight, leap days and the turn of a year")
{
    const MinuteFile file = parsed(header + "2015-12-31T23:59:00Z,1,1,1,1,1\n2016-01-01T00:00:00Z,1,1,1,1,1\n"
        + "2016-02-29T12:34:00Z,1,1,1,1,1\n2016-03-01T00:00:00Z,1,1,1,1,1\n");
    CHECK(file.times
        == (std::vector<TimeMs>{1'451'606'340'000, 1'451'606'400'000, 1'456'749'240'000, 1'456'790'400'000}));
}

TEST_CASE("a file is about the symbol that its name begins with")
{
    CHECK(recordedSymbol("/some/where/EURUSD-1m.csv") == "EURUSD");
    CHECK(recordedSymbol("a.B_9-1m.csv") == "a.B_9");
    for (const char* name :
        {"EURUSD.csv", "EURUSD-1h.csv", "-1m.csv", "EUR USD-1m.csv", "EUR-USD-1m.csv", "x"})
        CHECK(!recordedSymbol(name));
    CHECK(recordedSymbol(std::string(32, 'A') + "-1m.csv").has_value());
    CHECK(!recordedSymbol(std::string(33, 'A') + "-1m.csv"));
}

TEST_CASE("a file that is not there is named")
{
    std::string text;
    try {
        static_cast<void>(readMinuteFile("/nowhere/at/all-1m.csv"));
    } catch (const MarketDataError& error) {
        text = error.what();
    }
    CHECK_EQ(text, std::string("/nowhere/at/all-1m.csv: cannot be read: No such file or directory"));
}

CHECK_MAIN()
