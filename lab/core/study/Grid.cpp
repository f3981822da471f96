#include "lab/core/study/Grid.h"

#include "lab/core/study/StudyError.h"
#include "practice/core/market/HashRandom.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <set>

namespace lab {

namespace {

constexpr std::size_t mostDigits = 15;
constexpr std::uint64_t mostCounted = std::uint64_t{1} << 53;

/// units / 10^decimals, exactly.
struct Decimal {
    std::int64_t units = 0;
    int decimals = 0;
};

std::optional<Decimal> decimalOf(std::string_view text)
{
    const bool isNegative = text.starts_with('-');
    text.remove_prefix(isNegative ? 1 : 0);
    const std::size_t point = text.find('.');
    std::string digits(text.substr(0, point));
    Decimal number;
    if (point != std::string_view::npos) {
        const std::string_view behind = text.substr(point + 1);
        if (behind.empty())
            return std::nullopt;
        digits += behind;
        number.decimals = static_cast<int>(behind.size());
    }
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (digits.empty() || point == 0 || digits.size() > mostDigits || !std::ranges::all_of(digits, isDigit))
        return std::nullopt;
    std::from_chars(digits.data(), digits.data() + digits.size(), number.units);
    if (isNegative)
        number.units = -number.units;
    return number;
}

/// The units at so many decimals; nothing where they are too many digits.
std::optional<std::int64_t> unitsAt(Decimal number, int decimals)
{
    for (; number.decimals < decimals; ++number.decimals) {
        if (number.units > 1'000'000'000'000'000'00 || number.units < -1'000'000'000'000'000'00)
            return std::nullopt;
        number.units *= 10;
    }
    return number.units;
}

std::string textOf(std::int64_t units, int decimals)
{
    std::string digits = std::to_string(units < 0 ? -units : units);
    const auto places = static_cast<std::size_t>(decimals);
    if (digits.size() <= places)
        digits.insert(0, places + 1 - digits.size(), '0');
    if (places > 0) {
        digits.insert(digits.size() - places, ".");
        digits.resize(digits.find_last_not_of('0') + 1);
        if (digits.back() == '.')
            digits.pop_back();
    }
    return (units < 0 ? "-" : "") + digits;
}

std::vector<std::string_view> parts(std::string_view text, char separator)
{
    std::vector<std::string_view> found;
    char quote = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (quote != 0)
            quote = text[i] == quote ? '\0' : quote;
        else if (text[i] == '"' || text[i] == '\'')
            quote = text[i];
        else if (text[i] == separator) {
            found.push_back(text.substr(start, i - start));
            start = i + 1;
        }
    }
    found.push_back(text.substr(start));
    return found;
}

std::string tooMany(const std::string& what)
{
    return what + " are too many: a study tries at most " + std::to_string(mostSets);
}

std::vector<std::string> rangeOf(const std::string& name, std::string_view text)
{
    const auto wrong = [&](const std::string& why) {
        return StudyError("--set " + name + '=' + std::string(text) + ": " + why);
    };
    const std::vector<std::string_view> words = parts(text, ':');
    if (words.size() != 3)
        throw wrong("a range is FROM:TO:STEP, such as 5:20:1");
    std::optional<Decimal> numbers[3];
    int decimals = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        numbers[i] = decimalOf(words[i]);
        if (!numbers[i])
            throw wrong('"' + std::string(words[i]) + "\" is no plain number such as 20 or -0.5");
        decimals = std::max(decimals, numbers[i]->decimals);
    }
    const auto from = unitsAt(*numbers[0], decimals);
    const auto to = unitsAt(*numbers[1], decimals);
    const auto step = unitsAt(*numbers[2], decimals);
    if (!from || !to || !step)
        throw wrong("these numbers have too many digits");
    if (*step <= 0)
        throw wrong("the step has to be above 0");
    if (*from > *to)
        throw wrong("the range has to begin with its lowest number");
    const auto count = static_cast<std::uint64_t>((*to - *from) / *step) + 1;
    if (count > mostSets)
        throw StudyError(tooMany(std::to_string(count) + " values of " + name));
    std::vector<std::string> values;
    values.reserve(count);
    for (std::uint64_t i = 0; i < count; ++i)
        values.push_back(textOf(*from + static_cast<std::int64_t>(i) * *step, decimals));
    return values;
}

} // namespace

GridAxis axisOf(const std::string& name, std::string_view text, bool isNumber)
{
    GridAxis axis{name, {}};
    if (isNumber && text.find(':') != std::string_view::npos) {
        axis.values = rangeOf(name, text);
        return axis;
    }
    std::set<std::string_view> seen;
    for (const std::string_view value : parts(text, ',')) {
        if (!seen.insert(value).second)
            throw StudyError("--set " + name + '=' + std::string(text) + ": " + std::string(value)
                + " is there twice, and would be tried twice");
        axis.values.emplace_back(value);
    }
    if (axis.values.size() > mostSets)
        throw StudyError(tooMany(std::to_string(axis.values.size()) + " values of " + name));
    return axis;
}

Grid::Grid(std::vector<GridAxis> axes)
    : m_axes(std::move(axes))
{
    for (const GridAxis& axis : m_axes) {
        const std::uint64_t count = axis.values.size();
        if (count == 0)
            throw StudyError(axis.name + " has no values");
        if (m_size > mostCounted / count)
            throw StudyError("These ranges have more sets than can be counted");
        m_size *= count;
    }
}

bool Grid::isSwept(std::string_view name) const
{
    const auto axis = std::ranges::find(m_axes, name, &GridAxis::name);
    return axis != m_axes.end() && axis->values.size() > 1;
}

std::vector<std::size_t> Grid::sizes() const
{
    std::vector<std::size_t> sizes;
    for (const GridAxis& axis : m_axes)
        sizes.push_back(axis.values.size());
    return sizes;
}

std::vector<std::size_t> Grid::placesOf(std::uint64_t number) const
{
    std::vector<std::size_t> places(m_axes.size());
    for (std::size_t axis = m_axes.size(); axis-- > 0;) {
        const std::uint64_t count = m_axes[axis].values.size();
        places[axis] = static_cast<std::size_t>(number % count);
        number /= count;
    }
    return places;
}

std::uint64_t Grid::numberOf(const std::vector<std::size_t>& places) const
{
    std::uint64_t number = 0;
    for (std::size_t axis = 0; axis < m_axes.size(); ++axis)
        number = number * m_axes[axis].values.size() + places[axis];
    return number;
}

std::vector<std::pair<std::string, std::string>> Grid::inputsOf(std::uint64_t number) const
{
    std::vector<std::pair<std::string, std::string>> inputs;
    const std::vector<std::size_t> places = placesOf(number);
    for (std::size_t axis = 0; axis < m_axes.size(); ++axis)
        inputs.emplace_back(m_axes[axis].name, m_axes[axis].values[places[axis]]);
    return inputs;
}

std::vector<std::uint64_t> allSets(const Grid& grid)
{
    if (grid.size() > mostSets)
        throw StudyError(tooMany(std::to_string(grid.size()) + " sets") + "; --random N tries N of them");
    std::vector<std::uint64_t> numbers(static_cast<std::size_t>(grid.size()));
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = i;
    return numbers;
}

std::vector<std::uint64_t> sampledSets(const Grid& grid, std::uint64_t count, std::uint64_t seed)
{
    if (count >= grid.size())
        return allSets(grid);
    if (count > mostSets)
        throw StudyError(tooMany(std::to_string(count) + " sets"));
    // Floyd's way: each sample is as likely as any other, and nothing is drawn in vain.
    practice::HashRandom random(practice::hashKey({seed, practice::hashText("sampled sets")}));
    std::set<std::uint64_t> chosen;
    for (std::uint64_t last = grid.size() - count; last < grid.size(); ++last) {
        const auto drawn = static_cast<std::uint64_t>(random.uniform() * static_cast<double>(last + 1));
        if (!chosen.insert(std::min(drawn, last)).second)
            chosen.insert(last);
    }
    return {chosen.begin(), chosen.end()};
}

} // namespace lab
