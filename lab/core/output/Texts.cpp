#include "lab/core/output/Texts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>

namespace lab {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

std::string padded(std::int64_t value, std::size_t width)
{
    std::string digits = std::to_string(value < 0 ? -value : value);
    if (digits.size() < width)
        digits.insert(0, width - digits.size(), '0');
    return value < 0 ? "-" + digits : digits;
}

/// Bytes of the UTF-8 character at the front of the text, which is not empty; 0 where there is none.
std::size_t characterLength(std::string_view text)
{
    const auto byte = [text](std::size_t place) { return static_cast<unsigned char>(text[place]); };
    const unsigned first = byte(0);
    const std::size_t length = first < 0x80 ? 1
        : first < 0xC2                      ? 0
        : first < 0xE0                      ? 2
        : first < 0xF0                      ? 3
        : first < 0xF5                      ? 4
                                            : 0;
    if (length == 0 || length > text.size())
        return 0;
    for (std::size_t place = 1; place < length; ++place) {
        if ((byte(place) & 0xC0U) != 0x80U)
            return 0;
    }
    if (length < 3)
        return length;
    const unsigned second = byte(1);
    const bool isOverlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
    const bool isSurrogate = first == 0xED && second >= 0xA0;
    const bool isBeyond = first == 0xF4 && second >= 0x90;
    return isOverlong || isSurrogate || isBeyond ? 0 : length;
}

} // namespace

std::string isoDate(std::int64_t day)
{
    const std::chrono::year_month_day date{
        std::chrono::sys_days{std::chrono::days{static_cast<std::chrono::days::rep>(day)}}};
    return padded(static_cast<int>(date.year()), 4) + '-' + padded(static_cast<unsigned>(date.month()), 2)
        + '-' + padded(static_cast<unsigned>(date.day()), 2);
}

std::string minuteText(practice::TimeMs time)
{
    const std::int64_t day = practice::floorDivide(time, practice::dayMs);
    const std::int64_t minutes = (time - day * practice::dayMs) / practice::minuteMs;
    return isoDate(day) + ' ' + padded(minutes / 60, 2) + ':' + padded(minutes % 60, 2);
}

std::string isoTime(practice::TimeMs time)
{
    const std::int64_t day = practice::floorDivide(time, practice::dayMs);
    const std::int64_t rest = time - day * practice::dayMs;
    return isoDate(day) + 'T' + padded(rest / practice::hourMs, 2) + ':'
        + padded(rest / practice::minuteMs % 60, 2) + ':' + padded(rest / 1000 % 60, 2) + '.'
        + padded(rest % 1000, 3) + 'Z';
}

std::string shortestText(double value)
{
    if (!std::isfinite(value))
        return "null";
    // Left to itself, to_chars would write 100000 as 1e+05.
    const double size = std::abs(value);
    const bool isPlain = size == 0 || (size >= 1e-5 && size < 1e15);
    std::array<char, 40> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value == 0 ? 0.0 : value,
        isPlain ? std::chars_format::fixed : std::chars_format::scientific);
    return {text.data(), end.ptr};
}

std::string fixedText(double value, int decimals)
{
    if (!std::isfinite(value))
        return "null";
    std::array<char, 400> text{};
    const auto end = std::to_chars(
        text.data(), text.data() + text.size(), value, std::chars_format::fixed, std::clamp(decimals, 0, 20));
    std::string fixed(text.data(), end.ptr);
    if (fixed.find_first_not_of("-0.") == std::string::npos && fixed.front() == '-')
        fixed.erase(0, 1);
    return fixed;
}

std::string groupedText(double value, int decimals)
{
    std::string text = fixedText(value, decimals);
    if (!std::isfinite(value))
        return text;
    const std::size_t first = text.front() == '-' ? 1 : 0;
    std::size_t place = std::min(text.find('.'), text.size());
    while (place > first + 3) {
        place -= 3;
        text.insert(place, 1, ',');
    }
    return text;
}

std::string hexText(std::uint64_t value)
{
    std::array<char, 16> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, 16);
    const std::string digits(text.data(), end.ptr);
    return std::string(text.size() - digits.size(), '0') + digits;
}

std::string_view sideText(practice::Side side)
{
    return side == practice::Side::Buy ? "BUY" : "SELL";
}

std::string_view reasonText(ExitReason reason)
{
    constexpr std::array<std::string_view, 8> texts{
        "SL", "TP", "SCRIPT", "END", "MARGIN", "RULE", "MANUAL", "OTHER"};
    return texts[static_cast<std::size_t>(reason)];
}

std::string oneLine(std::string_view text)
{
    std::string line;
    line.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const auto first = static_cast<unsigned char>(text.front());
        const bool isControl = length == 1
            ? first < 0x20 || first == 0x7F
            : length == 2 && first == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0;
        if (length == 0)
            line += replacement;
        else if (isControl || text.starts_with("\xE2\x80\xA8") || text.starts_with("\xE2\x80\xA9"))
            line += ' ';
        else
            line += text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return line;
}

std::string shortened(std::string_view text, std::size_t maxBytes)
{
    constexpr std::string_view ellipsis = "\xE2\x80\xA6";
    // What lies far beyond the end is not even looked at: a script can print without end.
    std::string line = oneLine(text.substr(0, maxBytes + 1));
    if (line.size() <= maxBytes && text.size() <= maxBytes)
        return line;
    std::size_t end = std::min(line.size(), maxBytes - std::min(maxBytes, ellipsis.size()));
    while (end > 0 && end < line.size() && (static_cast<unsigned char>(line[end]) & 0xC0U) == 0x80U)
        --end;
    line.resize(end);
    return line += ellipsis;
}

std::string escaped(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (const char letter : oneLine(text)) {
        switch (letter) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            result += letter;
        }
    }
    return result;
}

std::string typeset(std::string number)
{
    if (number.starts_with('-'))
        number.replace(0, 1, "\xE2\x88\x92");
    return number;
}

} // namespace lab
