#include "practice/server/JsonText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>

namespace practice {

namespace {

void appendPadded(std::string& text, std::int64_t value, std::size_t width)
{
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    const auto length = static_cast<std::size_t>(end - digits.data());
    text.append(width > length ? width - length : 0, '0');
    text.append(digits.data(), length);
}

} // namespace

std::string jsonText(const nlohmann::json& value)
{
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void appendFixed(std::string& text, double value, int digits)
{
    // Room for the largest double in fixed notation.
    std::array<char, 352> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
        std::chars_format::fixed, std::clamp(digits, 0, 20));
    text.append(buffer.data(), end.ptr);
}

std::string fixedText(double value, int digits)
{
    std::string text;
    appendFixed(text, value, digits);
    return text;
}

std::string isoTime(TimeMs time)
{
    using namespace std::chrono;
    const TimeMs day = floorDivide(time, dayMs);
    const TimeMs inDay = time - day * dayMs;
    const year_month_day date{sys_days{days{day}}};
    std::string text;
    text.reserve(24);
    appendPadded(text, int{date.year()}, 4);
    text.push_back('-');
    appendPadded(text, unsigned{date.month()}, 2);
    text.push_back('-');
    appendPadded(text, unsigned{date.day()}, 2);
    text.push_back('T');
    appendPadded(text, inDay / hourMs, 2);
    text.push_back(':');
    appendPadded(text, inDay / minuteMs % 60, 2);
    text.push_back(':');
    appendPadded(text, inDay / 1000 % 60, 2);
    text.push_back('.');
    appendPadded(text, inDay % 1000, 3);
    text.push_back('Z');
    return text;
}

} // namespace practice
