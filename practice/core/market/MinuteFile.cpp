#include "practice/core/market/MinuteFile.h"

#include "practice/core/FileContent.h"
#include "practice/core/PointScale.h"
#include "practice/core/market/HashRandom.h"
#include "practice/core/market/LineBlocks.h"

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

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// A number of two digits at a place; below 0 when there are none.
int twoDigits(std::string_view text, std::size_t at)
{
    return isDigit(text[at]) && isDigit(text[at + 1]) ? (text[at] - '0') * 10 + text[at + 1] - '0' : -1;
}

// Days since 1970 of a date like 2014-05-01.
std::optional<TimeMs> parseDate(std::string_view text)
{
    const int century = twoDigits(text, 0);
    const int year = twoDigits(text, 2);
    const int month = twoDigits(text, 5);
    const int day = twoDigits(text, 8);
    if (std::min({century, year, month, day}) < 0 || text[4] != '-' || text[7] != '-')
        return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(100 * century + year),
        std::chrono::month(static_cast<unsigned>(month)), std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok())
        return std::nullopt;
    return std::chrono::sys_days(date).time_since_epoch().count();
}

// Reads times like 2014-05-01T00:00:00Z, of which most are of the same day as the one before.
class TimeReader final {
public:
    std::optional<TimeMs> read(std::string_view text)
    {
        if (text.size() != 20 || text[10] != 'T' || text[13] != ':' || text[16] != ':' || text[19] != 'Z')
            return std::nullopt;
        const int hour = twoDigits(text, 11);
        const int minute = twoDigits(text, 14);
        const int second = twoDigits(text, 17);
        if (std::min({hour, minute, second}) < 0 || hour > 23 || minute > 59 || second > 59)
            return std::nullopt;
        if (const std::string_view date = text.substr(0, 10); date != m_date) {
            const auto days = parseDate(date);
            if (!days)
                return std::nullopt;
            m_date = date;
            m_day = *days * dayMs;
        }
        return m_day + hour * hourMs + minute * minuteMs + second * TimeMs(1000);
    }

private:
    std::string m_date;
    TimeMs m_day = 0;
};

struct Decimal {
    std::int64_t units = 0; // of the last decimal
    int decimals = 0;
};

// Digits with or without a point between them: up to 7 before it, up to maxPriceDigits behind it.
std::optional<Decimal> parsePrice(std::string_view text)
{
    constexpr std::size_t mostBefore = 7;
    if (text.size() > mostBefore + 1 + maxPriceDigits)
        return std::nullopt;
    Decimal price;
    std::size_t place = 0;
    const auto readDigits = [&] {
        const std::size_t first = place;
        for (; place < text.size() && isDigit(text[place]); ++place)
            price.units = price.units * 10 + (text[place] - '0');
        return place - first;
    };
    const std::size_t before = readDigits();
    if (before == 0 || before > mostBefore)
        return std::nullopt;
    if (place < text.size()) {
        if (text[place++] != '.')
            return std::nullopt;
        price.decimals = static_cast<int>(readDigits());
        if (price.decimals == 0 || price.decimals > maxPriceDigits || place < text.size())
            return std::nullopt;
    }
    return price.units > 0 ? std::optional(price) : std::nullopt;
}

std::int64_t tenToThe(int decimals)
{
    return static_cast<std::int64_t>(pointsPerUnit(decimals));
}

class MinuteReader final {
public:
    MinuteReader(std::istream& input, const std::string& name)
        : m_lines(input)
        , m_name(name)
    {
    }

    MinuteFile read(std::size_t fewest)
    {
        readHeader();
        while (const auto line = nextLine()) {
            if (isBlank(*line)) {
                requireOnlyBlankLines();
                break;
            }
            if (m_file.minutes.size() == maxRows)
                fail("more rows than can be replayed");
            readRow(*line);
        }
        if (m_lines.failed())
            throw MarketDataError(m_name + ": cannot be read");
        if (m_file.minutes.size() < fewest)
            fail(fewest == 1 ? "no minutes" : "fewer than two minutes");
        settle();
        return std::move(m_file);
    }

private:
    [[noreturn]] void fail(const std::string& reason) const
    {
        throw MarketDataError(
            m_name + ':' + std::to_string(std::max<std::size_t>(m_line, 1)) + ": " + reason);
    }

    std::optional<std::string_view> nextLine()
    {
        const auto line = m_lines.next();
        if (line)
            ++m_line;
        return line;
    }

    void readHeader()
    {
        std::string_view line = nextLine().value_or(std::string_view());
        if (line.starts_with(byteOrderMark))
            line.remove_prefix(byteOrderMark.size());
        if (line != plainHeader && line != askHeader)
            fail("the header is not \"" + std::string(plainHeader) + "\" with or without the ask columns");
        m_hasAsk = line == askHeader;
    }

    // Blank lines end many files; one between two rows is a sign of damage.
    void requireOnlyBlankLines()
    {
        const std::size_t first = m_line;
        while (const auto line = nextLine()) {
            if (!isBlank(*line)) {
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
        std::size_t from = 0;
        for (std::size_t place = 0; place <= line.size(); ++place) {
            if (place < line.size() && line[place] != ',')
                continue;
            if (count < askColumns)
                cells[count] = line.substr(from, place - from);
            ++count;
            from = place + 1;
        }
        if (count != wanted)
            fail("expected " + std::to_string(wanted) + " columns, found " + std::to_string(count));

        const TimeMs time = rowTime(cells[0]);
        const auto volume = readVolume(cells[5]);
        if (!volume)
            fail("the volume is not a number from 0");
        GridBar bid = rowBar(cells.data() + 1);
        const int digits = m_file.digits;
        const GridBar ask = m_hasAsk ? rowBar(cells.data() + 6) : bid;
        if (digits != m_file.digits)
            scale(bid, tenToThe(m_file.digits - digits));
        if (ask.open < bid.open || ask.high < bid.high || ask.low < bid.low || ask.close < bid.close)
            fail("an ask is below its bid");
        // In half points, in which every mid is whole.
        m_file.minutes.append(
            {{bid.open + ask.open, bid.high + ask.high, bid.low + ask.low, bid.close + ask.close, *volume},
                {ask.open - bid.open, ask.high - bid.high, ask.low - bid.low, ask.close - bid.close}});
        m_file.times.push_back(time);
    }

    static std::optional<std::int64_t> readVolume(std::string_view text)
    {
        if (text == "0") // where nothing was counted, all of them
            return 0;
        double volume = 0;
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, volume);
        if (text.empty() || error != std::errc() || stop != end || !(volume >= 0) || volume > 1e12)
            return std::nullopt;
        return std::llround(volume);
    }

    static void scale(GridBar& bar, std::int64_t factor)
    {
        for (std::int64_t* price : {&bar.open, &bar.high, &bar.low, &bar.close})
            *price *= factor;
    }

    // What has been read so far, in points of more digits.
    void raiseDigits(int digits)
    {
        const std::int64_t factor = tenToThe(digits - m_file.digits);
        m_file.minutes.changeEach([factor](std::size_t, MinuteRecord& record) {
            scale(record.bar, factor);
            HalfSpreads& spreads = record.halfSpread;
            for (std::int64_t* spread : {&spreads.open, &spreads.high, &spreads.low, &spreads.close})
                *spread *= factor;
        });
        m_file.digits = digits;
    }

    TimeMs rowTime(std::string_view text)
    {
        const auto time = m_timeReader.read(text);
        if (!time)
            fail("the time is not like 2014-05-01T00:00:00Z");
        if (*time % minuteMs != 0)
            fail("the time is not a whole minute");
        if (!m_file.times.empty() && *time <= m_file.times.back())
            fail("the time is not after the line before");
        return *time;
    }

    // In points of the most decimals so far, those of these prices included.
    GridBar rowBar(const std::string_view* cells)
    {
        std::array<Decimal, 4> prices;
        int decimals = 0;
        for (std::size_t i = 0; i < prices.size(); ++i) {
            const auto price = parsePrice(cells[i]);
            if (!price)
                fail("a price is not a plain decimal above 0");
            prices[i] = *price;
            decimals = std::max(decimals, price->decimals);
        }
        if (decimals > m_file.digits)
            raiseDigits(decimals);
        const auto points = [this](const Decimal& price) {
            return price.decimals == m_file.digits ? price.units
                                                   : price.units * tenToThe(m_file.digits - price.decimals);
        };
        const GridBar bar{points(prices[0]), points(prices[1]), points(prices[2]), points(prices[3]), 0};
        if (bar.high < std::max(bar.open, bar.close))
            fail("high is below open or close");
        if (bar.low > std::min(bar.open, bar.close))
            fail("low is above open or close");
        return bar;
    }

    // The mid is rounded down and the half spread up, so that the ask is as recorded and the bid at most one
    // point lower: no trade is ever cheaper than it was.
    void toPoints(std::int64_t& mid, std::int64_t& halfSpread) const
    {
        if (m_hasAsk)
            halfSpread = std::max<std::int64_t>(1, (halfSpread + 1) / 2);
        mid = std::max(mid / 2, std::max<std::int64_t>(1, halfSpread) + 1);
    }

    // An open or close at the same mid as an extreme is that extreme, but for half a point that has been
    // rounded away; the wider spread holds for both.
    static void joinEqualCorners(MinuteRecord& record)
    {
        const GridBar& bar = record.bar;
        HalfSpreads& spreads = record.halfSpread;
        if (bar.high == bar.low)
            spreads = spreads.widest();
        if (bar.open == bar.high)
            spreads.open = spreads.high = std::max(spreads.open, spreads.high);
        if (bar.open == bar.low)
            spreads.open = spreads.low = std::max(spreads.open, spreads.low);
        if (bar.close == bar.high)
            spreads.close = spreads.high = std::max(spreads.close, spreads.high);
        if (bar.close == bar.low)
            spreads.close = spreads.low = std::max(spreads.close, spreads.low);
    }

    // From half points to points, and volumes where there are none.
    void settle()
    {
        double ranges = 0;
        m_file.minutes.changeEach([&](std::size_t, MinuteRecord& record) {
            GridBar& bar = record.bar;
            HalfSpreads& spreads = record.halfSpread;
            toPoints(bar.open, spreads.open);
            toPoints(bar.high, spreads.high);
            toPoints(bar.low, spreads.low);
            toPoints(bar.close, spreads.close);
            joinEqualCorners(record);
            ranges += static_cast<double>(bar.high - bar.low);
        });
        const double usualRange = std::max(1.0, ranges / static_cast<double>(m_file.minutes.size()));
        m_file.minutes.changeEach([&](std::size_t number, MinuteRecord& record) {
            if (record.bar.volume > 0)
                return;
            HashRandom random(hashKey({static_cast<std::uint64_t>(m_file.times[number])}));
            const double range = static_cast<double>(record.bar.high - record.bar.low) / usualRange;
            record.bar.volume = std::llround((0.6 + 0.8 * random.uniform()) * (15 + 60 * std::sqrt(range)));
        });
        m_file.minutes.trim();
        m_file.firstTime = m_file.times.front();
        m_file.lastTime = m_file.times.back();
    }

    LineBlocks m_lines;
    const std::string& m_name;
    std::size_t m_line = 0;
    bool m_hasAsk = false;
    TimeReader m_timeReader;
    MinuteFile m_file;
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

MinuteFile readMinutes(std::istream& input, const std::string& name, std::size_t fewest)
{
    return MinuteReader(input, name).read(fewest);
}

MinuteFile readMinuteFile(const std::filesystem::path& path, std::size_t fewest)
{
    const std::string name = path.string();
    std::string reason;
    std::ifstream input = openToRead(path, reason);
    if (!reason.empty())
        throw MarketDataError(name + ": cannot be read: " + reason);
    return readMinutes(input, name, fewest);
}

} // namespace practice
