#include "practice/Check.h"

#include "practice/core/market/HashRandom.h"
#include "practice/core/market/MinuteFile.h"
#include "practice/core/market/ReplayLoop.h"

#include <sstream>
#include <string>
#include <vector>

using namespace practice;

namespace {

std::vector<MinuteRecord> someMinutes(std::size_t count)
{
    HashRandom random(count);
    std::vector<MinuteRecord> minutes;
    std::int64_t price = 100'000;
    for (std::size_t i = 0; i < count; ++i) {
        const auto move = [&] { return static_cast<std::int64_t>(random.uniform() * 40); };
        GridBar bar{price, price, price, price + move() - 20, 1 + move()};
        bar.high = std::max(bar.open, bar.close) + move();
        bar.low = std::min(bar.open, bar.close) - move();
        minutes.push_back({bar, {1 + move(), 1 + move(), 1 + move(), 1 + move()}});
        price = bar.close;
    }
    return minutes;
}

ReplayLoop loopOf(const std::vector<MinuteRecord>& minutes)
{
    MinuteTable table;
    for (const MinuteRecord& minute : minutes)
        table.append(minute);
    table.trim();
    return ReplayLoop(std::move(table));
}

GridBar foldOneByOne(const ReplayLoop& loop, std::int64_t first, std::int64_t last)
{
    GridBar bar = loop.minute(first).bar;
    for (std::int64_t number = first + 1; number <= last; ++number)
        bar.append(loop.minute(number).bar);
    return bar;
}

std::string recordOf(int rows)
{
    std::ostringstream text;
    text << "time,open,high,low,close,volume\n";
    for (int row = 0; row < rows; ++row) {
        const auto two = [](int number) { return std::to_string(100 + number).substr(1); };
        text << "20" << two(row / 1440 / 28 / 12) << '-' << two(row / 1440 / 28 % 12 + 1) << '-'
             << two(row / 1440 % 28 + 1) << 'T' << two(row / 60 % 24) << ':' << two(row % 60)
             << ":00Z,1.38676,1.38684,1.38670,1.38681,0\n";
    }
    return text.str();
}

} // namespace

TEST_CASE("minutes keep what was put in, whatever their size")
{
    MinuteTable table;
    std::vector<MinuteRecord> records = someMinutes(100);
    for (const MinuteRecord& record : records)
        table.append(record);
    const std::size_t narrow = table.bytes();
    records.push_back({{1, 4'294'967'295, 1, 2, 3}, 0});
    table.append(records.back());
    records.push_back({{4'294'967'296, 999'999'999'999'999, 1, 5, 1'000'000'000'000}, 7});
    table.append(records.back()); // the first that does not fit into 32 bits
    records.push_back({{2, 3, 1, 2, 0}, {70'000, 80'000, 90'000, 1}});
    table.append(records.back());
    table.trim();
    REQUIRE(table.size() == records.size());
    std::int64_t volume = 0;
    bool same = true;
    for (std::size_t i = 0; i < records.size(); ++i) {
        same = same && table.at(i).bar == records[i].bar && table.at(i).halfSpread == records[i].halfSpread
            && table.volumeBefore(i) == volume;
        volume += records[i].bar.volume;
    }
    CHECK(same);
    CHECK_EQ(table.volumeBefore(table.size()), volume);
    CHECK(narrow < 100 * 60 && table.bytes() == 103 * 72);
}

TEST_CASE("a spread that is too wide for the narrow table is kept whole")
{
    for (const HalfSpreads& spreads : {HalfSpreads(65'535), HalfSpreads(65'536, 1, 1, 1),
             HalfSpreads(1, 65'536, 1, 1), HalfSpreads(1, 1, 65'536, 1), HalfSpreads(1, 1, 1, 65'536)}) {
        MinuteTable table;
        table.append({{100'000, 100'020, 99'990, 100'010, 4}, {2, 3, 4, 5}});
        table.append({{100'000, 100'020, 99'990, 100'010, 5}, spreads});
        CHECK(table.at(0).halfSpread == HalfSpreads(2, 3, 4, 5));
        CHECK(table.at(1).halfSpread == spreads);
    }
}

TEST_CASE("played backwards, a minute's open has the spread of its close")
{
    const std::vector<MinuteRecord> records = someMinutes(3);
    const ReplayLoop loop = loopOf(records);
    const HalfSpreads& last = records.back().halfSpread;
    CHECK(loop.minute(2).halfSpread == last);
    CHECK(loop.minute(3).halfSpread == HalfSpreads(last.close, last.high, last.low, last.open));
}

TEST_CASE("a change of each minute sees the others as they were")
{
    MinuteTable table;
    for (std::int64_t i = 1; i <= 4; ++i)
        table.append({{10, 12, 8, 11, i}, 1});
    table.changeEach([](std::size_t number, MinuteRecord& record) {
        CHECK_EQ(record.bar.volume, static_cast<std::int64_t>(number + 1));
        record.bar.volume *= 10;
        record.bar.high = number == 2 ? std::int64_t(1) << 40 : 13;
    });
    CHECK(table.at(0).bar == (GridBar{10, 13, 8, 11, 10}));
    CHECK(table.at(2).bar == (GridBar{10, std::int64_t(1) << 40, 8, 11, 30}));
    CHECK(table.at(3).bar == (GridBar{10, 13, 8, 11, 40}));
    CHECK_EQ(table.volumeBefore(4), std::int64_t(100));
}

TEST_CASE("a fold is that of its minutes one by one, across turns of the record too")
{
    for (const std::size_t count : {2U, 31U, 32U, 33U, 64U, 65U, 100U, 1000U}) {
        const ReplayLoop loop = loopOf(someMinutes(count));
        HashRandom random(count + 1);
        const auto span = static_cast<double>(count);
        bool same = true;
        for (int i = 0; i < 300; ++i) {
            const auto first = static_cast<std::int64_t>(random.uniform() * 5 * span);
            const auto last
                = first + static_cast<std::int64_t>(random.uniform() * (i % 2 == 0 ? 3 : 0.2) * span);
            same = same && loop.fold(first, last) == foldOneByOne(loop, first, last);
        }
        CHECK(same);
    }
}

TEST_CASE("decimals that come late lose nothing of the lines before them")
{
    std::istringstream input("time,open,high,low,close,volume,ask_open,ask_high,ask_low,ask_close\n"
                             "2014-05-01T00:00:00Z,1.1,1.3,1.0,1.2,5,1.2,1.4,1.1,1.3\n"
                             "2014-05-01T00:01:00Z,1.12,1.30,1.00,1.2,5,1.2,1.4,1.1,1.33\n"
                             "2014-05-01T00:02:00Z,9999999,9999999,0.12345678,0.12345679,5,9999999,9999999,"
                             "0.12345679,0.2\n");
    const MinuteFile file = readMinutes(input, "X-1m.csv");
    CHECK_EQ(file.digits, 8);
    CHECK(file.minutes.at(0).bar == (GridBar{115'000'000, 135'000'000, 105'000'000, 125'000'000, 5}));
    CHECK(file.minutes.at(0).halfSpread == HalfSpreads(5'000'000));
    CHECK(file.minutes.at(1).bar == (GridBar{116'000'000, 135'000'000, 105'000'000, 126'500'000, 5}));
    CHECK(file.minutes.at(2).bar
        == (GridBar{999'999'900'000'000, 999'999'900'000'000, 12'345'678, 16'172'839, 5}));
    CHECK(file.minutes.at(2).halfSpread == HalfSpreads(1, 1, 1, 3'827'161));
}

TEST_CASE("two million recorded minutes take less than a hundred megabytes")
{
    constexpr int rows = 50'000;
    std::istringstream input(recordOf(rows));
    const ReplayLoop loop(readMinutes(input, "X-1m.csv").minutes);
    CHECK(loop.bytes() >= rows * std::size_t(32));
    CHECK(loop.bytes() < rows * std::size_t(46)); // and more rows add one level of ranges to that
    MinuteTable table;
    for (int row = 0; row < 2'000'000; ++row)
        table.append({{138'676, 138'684, 138'670, 138'681, 42}, 4});
    table.trim();
    CHECK(ReplayLoop(std::move(table)).bytes() < 100'000'000);
}

CHECK_MAIN()
