#include "lab/core/output/SavedRun.h"

#include "lab/core/output/ResultFolder.h"
#include "lab/core/output/Texts.h"
#include "practice/core/FileContent.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <span>
#include <string_view>
#include <system_error>

namespace lab {

namespace {

namespace fs = std::filesystem;

/// A place in a file, for messages.
struct Place {
    const fs::path& file;
    std::size_t line = 1;
    [[noreturn]] void fail(const std::string& reason) const
    {
        throw OutputError(file.string() + ":" + std::to_string(line) + ": " + reason);
    }
};

/// The fields of a line, out of their quotes.
std::vector<std::string> fieldsOf(std::string_view line, const Place& place)
{
    std::vector<std::string> fields(1);
    bool isQuoted = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] == '"' && isQuoted && at + 1 < line.size() && line[at + 1] == '"')
            fields.back() += line[++at];
        else if (line[at] == '"')
            isQuoted = !isQuoted;
        else if (line[at] == ',' && !isQuoted)
            fields.emplace_back();
        else
            fields.back() += line[at];
    }
    if (isQuoted)
        place.fail("a quote is not closed");
    return fields;
}

/// A line of one of the files, field by field.
class Reader {
public:
    Reader(const Place& place, std::vector<std::string> fields)
        : m_place(place)
        , m_fields(std::move(fields))
    {
    }

    const std::string& text() { return m_fields[m_next++]; }

    double number()
    {
        const std::string& field = text();
        double value = 0;
        const auto end = std::from_chars(field.data(), field.data() + field.size(), value);
        if (end.ec != std::errc() || end.ptr != field.data() + field.size() || !std::isfinite(value))
            m_place.fail("\"" + shortened(field, 40) + "\" is no number");
        return value;
    }

    /// Two decimals, as whole hundredths.
    std::int64_t hundredths()
    {
        const double value = number() * 100;
        if (std::abs(value) > 9e15)
            m_place.fail("\"" + shortened(m_fields[m_next - 1], 40) + "\" is too large");
        return std::llround(value);
    }

    /// Whether the field is empty, which is then passed over.
    bool isEmpty()
    {
        if (!m_fields[m_next].empty())
            return false;
        ++m_next;
        return true;
    }

    double priceOrNothing() { return isEmpty() ? 0 : number(); }

    /// The number of the field's text among these.
    std::size_t choice(std::span<const std::string_view> texts)
    {
        const std::string& field = text();
        const auto found = std::find(texts.begin(), texts.end(), field);
        if (found == texts.end())
            m_place.fail("\"" + shortened(field, 40) + "\" is not known here");
        return static_cast<std::size_t>(found - texts.begin());
    }

    practice::TimeMs time()
    {
        const std::string& field = text();
        const auto part = [&field](std::size_t from, std::size_t length) {
            int value = -1;
            const auto* const end = field.data() + from + length;
            return std::from_chars(field.data() + from, end, value).ptr == end ? value : -1;
        };
        if (field.size() == 24) {
            const auto day = std::chrono::sys_days{
                std::chrono::year{part(0, 4)} / std::max(0, part(5, 2)) / std::max(0, part(8, 2))};
            const practice::TimeMs time = practice::TimeMs{day.time_since_epoch().count()} * practice::dayMs
                + part(11, 2) * practice::hourMs + part(14, 2) * practice::minuteMs + part(17, 2) * 1'000
                + part(20, 3);
            if (isoTime(time) == field)
                return time;
        }
        m_place.fail("\"" + shortened(field, 40) + "\" is no time");
    }

private:
    const Place& m_place;
    std::vector<std::string> m_fields;
    std::size_t m_next = 0;
};

/// Hands each line behind the header to `take`, with as many fields as the header has.
template <typename Take> void readLines(const fs::path& file, std::string_view header, Take&& take)
{
    const std::string content = practice::contentOr<OutputError>(file);
    Place place{file};
    const std::size_t columns = fieldsOf(header, place).size();
    std::string_view rest = content;
    for (; !rest.empty(); ++place.line) {
        const std::size_t end = rest.find('\n');
        if (end == std::string_view::npos)
            place.fail("the line is cut off");
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end + 1);
        if (place.line == 1) {
            if (line != header)
                place.fail("the header is not \"" + std::string(header) + "\"");
            continue;
        }
        std::vector<std::string> fields = fieldsOf(line, place);
        if (fields.size() != columns)
            place.fail(std::to_string(fields.size()) + " fields instead of " + std::to_string(columns));
        take(Reader(place, std::move(fields)));
    }
    if (content.empty())
        place.fail("the file is empty");
}

constexpr std::string_view tradesHeader
    = "ticket,symbol,side,lots,openTime,openPrice,closeTime,closePrice,stopLoss,takeProfit,profit,"
      "commission,swap,net,reason,mae,mfe,ambiguous";
constexpr std::array<std::string_view, 2> sides{"BUY", "SELL"};
constexpr std::array<std::string_view, 8> reasons{
    "SL", "TP", "SCRIPT", "END", "MARGIN", "RULE", "MANUAL", "OTHER"};
constexpr std::array<std::string_view, 2> answers{"0", "1"};

int decimalsOf(Reader fields)
{
    for (int skipped = 0; skipped < 5; ++skipped)
        static_cast<void>(fields.text());
    const std::string price = fields.text();
    const std::size_t point = price.find('.');
    return point == std::string::npos ? 0 : static_cast<int>(price.size() - point - 1);
}

void readTrades(const fs::path& file, SavedRun& run)
{
    readLines(file, tradesHeader, [&](Reader fields) {
        TradeRow trade;
        trade.digits = decimalsOf(fields);
        if (run.trades.empty())
            run.digits = trade.digits;
        trade.ticket = static_cast<int>(std::clamp(fields.number(), 0.0, 2e9));
        trade.symbol = fields.text();
        if (run.trades.empty())
            run.symbol = trade.symbol;
        trade.side = static_cast<practice::Side>(fields.choice(sides));
        trade.lots = fields.hundredths();
        trade.openTime = fields.time();
        trade.openPrice = fields.number();
        trade.closeTime = fields.time();
        trade.closePrice = fields.number();
        trade.stopLoss = fields.priceOrNothing();
        trade.takeProfit = fields.priceOrNothing();
        trade.profit = fields.hundredths();
        trade.commission = fields.hundredths();
        trade.swap = fields.hundredths();
        static_cast<void>(fields.hundredths()); // net, which the three before it make
        trade.reason = static_cast<ExitReason>(fields.choice(reasons));
        trade.worst = fields.isEmpty() ? 0 : fields.hundredths();
        trade.best = fields.isEmpty() ? 0 : fields.hundredths();
        trade.ambiguous = !fields.isEmpty() && fields.choice(answers) == 1;
        // Those of the run need no memory of their own.
        if (trade.symbol == run.symbol) {
            trade.symbol.clear();
            trade.digits = -1;
        }
        run.trades.push_back(std::move(trade));
    });
}

void readEquity(const fs::path& file, SavedRun& run)
{
    readLines(file, "time,balance,equity", [&](Reader fields) {
        const practice::TimeMs time = fields.time();
        const practice::Cents balance = fields.hundredths();
        run.equity.push_back({time, balance, fields.hundredths()});
    });
}

void readSummary(const fs::path& file, SavedRun& run)
{
    const std::string content = practice::contentOr<OutputError>(file);
    Place place{file};
    nlohmann::ordered_json summary;
    try {
        summary = nlohmann::ordered_json::parse(content);
    } catch (const nlohmann::json::parse_error& error) {
        const auto end = content.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, content.size()));
        place.line += static_cast<std::size_t>(std::count(content.begin(), end, '\n'));
        place.fail("this is no JSON");
    } catch (const nlohmann::json::exception&) {
        place.fail("a number is too large");
    }
    if (!summary.is_object())
        place.fail("this is no summary of a run");
    for (const auto& [key, value] : summary.items()) {
        if (value.is_number())
            run.figures.emplace_back(key, value.get<double>());
        else if (value.is_null())
            run.figures.emplace_back(key, std::nullopt);
        else if (value.is_string() && (key == "from" || key == "to"))
            (key == "from" ? run.from : run.to) = value.get<std::string>();
        else if (key == "warnings" && value.is_array()) {
            for (const auto& warning : value)
                run.warnings.push_back(warning.is_string() ? warning.get<std::string>() : std::string());
        } else {
            place.fail("\"" + shortened(key, 40) + "\" is no figure");
        }
    }
    if (run.figures.empty())
        place.fail("this is no summary of a run");
}

/// Figures do not need it, so a folder may lack it.
void readOrigin(const fs::path& file, SavedRun& run)
{
    std::error_code error;
    if (!fs::exists(file, error))
        return;
    const auto origin = nlohmann::ordered_json::parse(practice::contentOr<OutputError>(file), nullptr, false);
    if (!origin.is_object())
        Place{file}.fail("this is no JSON of a run");
    const auto textOf = [](const nlohmann::ordered_json& value) {
        return value.is_string() ? value.get<std::string>() : value.dump();
    };
    for (const auto& [key, value] : origin.items()) {
        if (key == "inputs" && value.is_object()) {
            // The text of what is nested endlessly would take more stack than there is.
            for (const auto& [name, literal] : value.items()) {
                if (literal.is_primitive())
                    run.origin.emplace_back("input " + name, textOf(literal));
            }
        } else if (value.is_primitive()) {
            run.origin.emplace_back(key, textOf(value));
        }
    }
    const auto simulated = origin.find("simulated");
    run.simulated = simulated != origin.end() && simulated->is_boolean() && simulated->get<bool>();
}

} // namespace

SavedRun readSavedRun(const fs::path& folder)
{
    SavedRun run;
    const fs::path plain = folder.lexically_normal();
    run.name = (plain.has_filename() ? plain : plain.parent_path()).filename().string();
    if (run.name.empty() || run.name == "." || run.name == "..")
        run.name = folder.string();
    readSummary(folder / "summary.json", run);
    readTrades(folder / "trades.csv", run);
    readEquity(folder / "equity.csv", run);
    readOrigin(folder / "run.json", run);
    return run;
}

} // namespace lab
