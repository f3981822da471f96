#include "practice/core/market/MinuteFile.h"

#include "practice/core/PointScale.h"
#include "practice/core/market/HashRandom.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <fstream>
#include <istream>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace practice {
namespace {

constexpr std::string_view plainHeader = "time,open,high,low,close,volume";
constexpr std::string_view askHeader = "time,open,high,low,close,volume,ask_open,ask_high,ask_low,ask_close";
constexpr std::string_view fileEnding = "-1m.csv";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t plainColumns = 6;
constexpr std::size_t askColumns = 10;
constexpr int maxDecimals = 8; // prices are first read in units of 10^-8
constexpr std::size_t maxRows = 2'000'000;

bool isSymbolName(const std::string& name)
{
    return !name.empty() && name.size() <= 32 && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.'
            || c == '_';
    });
}

bool isBlank(std::string_view line)
{
    return line.find_first_not_of(" \t") == std::string_view::npos;
}

template <typename T> std::optional<T> wholeNumber(std::string_view text)
{
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

bool allDigits(std::string_view text)
{
    return !text.empty()
        && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::optional<TimeMs> parseTime(std::string_view text)
{
    if (text.size() != 20 || text[4] != '-' || text[7] != '-' || text[10] != 'T' || text[13] != ':'
        || text[16] != ':' || text[19] != 'Z')
        return std::nullopt;
    std::array<int, 6> fields{};
    constexpr std::array<std::pair<std::size_t, std::size_t>, 6> places{
        {{0, 4}, {5, 2}, {8, 2}, {11, 2}, {14, 2}, {17, 2}}};
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::string_view field = text.substr(places[i].first, places[i].second);
        if (!allDigits(field))
            return std::nullopt;
        fields[i] = wholeNumber<int>(field).value_or(0);
    }
    const std::chrono::year_month_day date{std::chrono::year(fields[0]),
        std::chrono::month(static_cast<unsigned>(fields[1])),
        std::chrono::day(static_cast<unsigned>(fields[2]))};
    if (!date.ok() || fields[3] > 23 || fields[4] > 59 || fields[5] > 59)
        return std::nullopt;
    const TimeMs days = std::chrono::sys_days(date).time_since_epoch().count();
    return days * dayMs + fields[3] * hourMs + fields[4] * minuteMs + fields[5] * TimeMs(1000);
}

struct Decimal {
    std::int64_t units = 0; // of 10^-8
    int decimals = 0;
};

std::optional<Decimal> parsePrice(std::string_view text)
{
    const std::size_t point = text.find('.');
    const std::string_view whole = text.substr(0, point);
    const std::string_view fraction
        = point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
    if (!allDigits(whole) || whole.size() > 7 || fraction.size() > maxDecimals
        || (point != std::string_view::npos && !allDigits(fraction)))
        return std::nullopt;
    Decimal price{wholeNumber<std::int64_t>(whole).value_or(0), static_cast<int>(fraction.size())};
    for (std::size_t i = 0; i < maxDecimals; ++i)
        price.units = price.units * 10 + (i < fraction.size() ? fraction[i] - '0' : 0);
    if (price.units <= 0)
        return std::nullopt;
    return price;
}

class MinuteReader final {
public:
    MinuteReader(std::istream& input, const std::string& name)
        : m_input(input)
        , m_name(name)
    {
    }

    MinuteFile read()
    {
        std::string line;
        const bool any = nextLine(line);
        if (line.starts_with(byteOrderMark))
            line.erase(0, byteOrderMark.size());
        if (!any || (line != plainHeader && line != askHeader))
            fail("the header is not \"" + std::string(plainHeader) + "\" with or without the ask columns");
        m_hasAsk = line == askHeader;
        while (nextLine(line)) {
            if (isBlank(line)) {
                requireOnlyBlankLines();
                break;
            }
            if (m_file.minutes.size() == maxRows)
                fail("more rows than can be replayed");
            readRow(line);
        }
        if (m_input.bad())
            throw MarketDataError(m_name + ": cannot be read");
        if (m_file.minutes.size() < 2)
            fail("fewer than two minutes");
        settle();
        return std::move(m_file);
    }

private:
    [[noreturn]] void fail(const std::string& reason) const
    {
        throw MarketDataError(
            m_name + ':' + std::to_string(std::max<std::size_t>(m_line, 1)) + ": " + reason);
    }

    bool nextLine(std::string& line)
    {
        if (!std::getline(m_input, line))
            return false;
        ++m_line;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        return true;
    }

    // Blank lines end many files; one between two rows is a sign of damage.
    void requireOnlyBlankLines()
    {
        const std::size_t first = m_line;
        std::string line;
        while (nextLine(line)) {
            if (!isBlank(line)) {
                m_line = first;
                fail("the line is empty");
            }
        }
    }

    void readRow(std::string_view line)
    {
        std::array<std::string_view, askColumns> cells;
        const std::size_t wanted = m_hasAsk ? askColumns : plainColumns;
        std::size_t count = 0;
        for (std::size_t from = 0; from <= line.size(); ++count) {
            const std::size_t comma = std::min(line.find(',', from), line.size());
            if (count < askColumns)
                cells[count] = line.substr(from, comma - from);
            from = comma + 1;
        }
        if (count != wanted)
            fail("expected " + std::to_string(wanted) + " columns, found " + std::to_string(count));

        const TimeMs time = rowTime(cells[0]);
        const auto volume = wholeNumber<double>(cells[5]);
        if (!volume || !(*volume >= 0) || *volume > 1e12)
            fail("the volume is not a number from 0");
        const GridBar bid = rowBar(cells.data() + 1);
        const GridBar ask = m_hasAsk ? rowBar(cells.data() + 6) : bid;
        if (ask.open < bid.open || ask.high < bid.high || ask.low < bid.low || ask.close < bid.close)
            fail("an ask is below its bid");
        keepRow(time, bid, ask, std::llround(*volume));
    }

    // Prices are kept in half points of the most digits so far, in which every mid is whole.
    void keepRow(TimeMs time, const GridBar& bid, const GridBar& ask, std::int64_t volume)
    {
        if (m_digits > m_file.digits)
            addDigits();
        const auto unitsPerPoint = static_cast<std::int64_t>(pointsPerUnit(maxDecimals - m_file.digits));
        const auto twice
            = [&](std::int64_t left, std::int64_t right) { return (left + right) / unitsPerPoint; };
        m_file.minutes.append({{twice(bid.open, ask.open), twice(bid.high, ask.high), twice(bid.low, ask.low),
                                   twice(bid.close, ask.close), volume},
            (ask.close - bid.close) / unitsPerPoint});
        m_times.push_back(time);
    }

    void addDigits()
    {
        const auto factor = static_cast<std::int64_t>(pointsPerUnit(m_digits - m_file.digits));
        m_file.minutes.changeEach([factor](std::size_t, MinuteRecord& record) {
            GridBar& bar = record.bar;
            for (std::int64_t* price : {&bar.open, &bar.high, &bar.low, &bar.close, &record.halfSpread})
                *price *= factor;
        });
        m_file.digits = m_digits;
    }

    TimeMs rowTime(std::string_view text) const
    {
        const auto time = parseTime(text);
        if (!time)
            fail("the time is not like 2014-05-01T00:00:00Z");
        if (*time % minuteMs != 0)
            fail("the time is not a whole minute");
        if (!m_times.empty() && *time <= m_times.back())
            fail("the time is not after the line before");
        return *time;
    }

    GridBar rowBar(const std::string_view* cells)
    {
        std::array<std::int64_t, 4> units{};
        for (std::size_t i = 0; i < units.size(); ++i) {
            const auto price = parsePrice(cells[i]);
            if (!price)
                fail("a price is not a plain decimal above 0");
            units[i] = price->units;
            m_digits = std::max(m_digits, price->decimals);
        }
        const GridBar bar{units[0], units[1], units[2], units[3], 0};
        if (bar.high < std::max(bar.open, bar.close))
            fail("high is below open or close");
        if (bar.low > std::min(bar.open, bar.close))
            fail("low is above open or close");
        return bar;
    }

    // From half points to points, and volumes where there are none.
    void settle()
    {
        double ranges = 0;
        m_file.minutes.changeEach([&](std::size_t, MinuteRecord& record) {
            GridBar& bar = record.bar;
            for (std::int64_t* price : {&bar.open, &bar.high, &bar.low, &bar.close})
                *price = std::max<std::int64_t>(2, *price / 2);
            if (m_hasAsk)
                record.halfSpread = std::max<std::int64_t>(1, record.halfSpread / 2);
            ranges += static_cast<double>(bar.high - bar.low);
        });
        const double usualRange = std::max(1.0, ranges / static_cast<double>(m_file.minutes.size()));
        m_file.minutes.changeEach([&](std::size_t number, MinuteRecord& record) {
            if (record.bar.volume > 0)
                return;
            HashRandom random(hashKey({static_cast<std::uint64_t>(m_times[number])}));
            const double range = static_cast<double>(record.bar.high - record.bar.low) / usualRange;
            record.bar.volume = std::llround((0.6 + 0.8 * random.uniform()) * (15 + 60 * std::sqrt(range)));
        });
        m_file.minutes.trim();
        m_file.firstTime = m_times.front();
        m_file.lastTime = m_times.back();
        m_file.times = std::move(m_times);
    }

    std::istream& m_input;
    const std::string& m_name;
    std::size_t m_line = 0;
    bool m_hasAsk = false;
    int m_digits = 0; // the most decimals of the lines so far
    std::vector<TimeMs> m_times;
    MinuteFile m_file; // its digits follow m_digits when a line is complete
};

} // namespace

std::optional<std::string> recordedSymbol(const std::filesystem::path& path)
{
    std::string name = path.filename().string();
    if (!name.ends_with(fileEnding))
        return std::nullopt;
    name.resize(name.size() - fileEnding.size());
    return isSymbolName(name) ? std::optional(std::move(name)) : std::nullopt;
}

MinuteFile readMinutes(std::istream& input, const std::string& name)
{
    return MinuteReader(input, name).read();
}

MinuteFile readMinuteFile(const std::filesystem::path& path)
{
    const std::string name = path.string();
    std::ifstream input(path, std::ios::binary);
    std::error_code ignored;
    if (!input || std::filesystem::is_directory(path, ignored))
        throw MarketDataError(name + ": cannot be read");
    return readMinutes(input, name);
}

} // namespace practice
