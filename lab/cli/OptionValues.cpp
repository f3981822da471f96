#include "lab/cli/OptionValues.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <string>
#include <system_error>

namespace lab {

namespace {

template <typename Number> std::optional<Number> wholeText(std::string_view text)
{
    Number value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

/// Takes a fixed form off the front of a text, digit by digit.
class FormReader {
public:
    explicit FormReader(std::string_view text)
        : m_rest(text)
    {
    }
    /// The number that so many digits make up; nothing, for good, where there are none.
    [[nodiscard]] int number(std::size_t digits)
    {
        int value = 0;
        for (std::size_t i = 0; i < digits; ++i) {
            if (m_rest.empty() || m_rest.front() < '0' || m_rest.front() > '9') {
                m_isRight = false;
                return 0;
            }
            value = value * 10 + (m_rest.front() - '0');
            m_rest.remove_prefix(1);
        }
        return value;
    }
    void expect(char sign) { m_isRight = takes(sign) && m_isRight; }
    [[nodiscard]] bool takes(char sign)
    {
        if (m_rest.empty() || m_rest.front() != sign)
            return false;
        m_rest.remove_prefix(1);
        return true;
    }
    [[nodiscard]] bool isWholeAndRight() const { return m_isRight && m_rest.empty(); }

private:
    std::string_view m_rest;
    bool m_isRight = true;
};

} // namespace

std::optional<std::uint64_t> wholeNumber(std::string_view text, std::uint64_t lowest, std::uint64_t highest)
{
    const auto value = wholeText<std::uint64_t>(text);
    if (!value || *value < lowest || *value > highest)
        return std::nullopt;
    return value;
}

std::optional<double> decimalNumber(std::string_view text, double lowest, double highest)
{
    const auto value = wholeText<double>(text);
    if (!value || !std::isfinite(*value) || *value < lowest || *value > highest)
        return std::nullopt;
    return value;
}

std::optional<practice::Cents> amount(std::string_view text)
{
    constexpr std::uint64_t most = 1'000'000'000'000;
    const std::size_t point = text.find('.');
    const auto whole = wholeNumber(text.substr(0, point), 0, most);
    std::uint64_t cents = 0;
    if (point != std::string_view::npos) {
        std::string decimals(text.substr(point + 1));
        if (decimals.empty() || decimals.size() > 2)
            return std::nullopt;
        decimals.resize(2, '0');
        const auto value = wholeNumber(decimals);
        if (!value)
            return std::nullopt;
        cents = *value;
    }
    if (!whole || *whole * 100 + cents == 0 || *whole * 100 + cents > most * 100)
        return std::nullopt;
    return static_cast<practice::Cents>(*whole * 100 + cents);
}

std::optional<practice::TimeMs> moment(std::string_view text)
{
    FormReader form(text);
    const int year = form.number(4);
    form.expect('-');
    const int month = form.number(2);
    form.expect('-');
    const int day = form.number(2);
    practice::TimeMs ofDay = 0;
    if (form.takes('T')) {
        const int hours = form.number(2);
        form.expect(':');
        const int minutes = form.number(2);
        const int seconds = form.takes(':') ? form.number(2) : 0;
        const int milliseconds = form.takes('.') ? form.number(3) : 0;
        if (hours > 23 || minutes > 59 || seconds > 59)
            return std::nullopt;
        ofDay = hours * practice::hourMs + minutes * practice::minuteMs + seconds * practice::TimeMs{1'000}
            + milliseconds;
    }
    static_cast<void>(form.takes('Z'));
    const std::chrono::year_month_day date{std::chrono::year(year),
        std::chrono::month(static_cast<unsigned>(month)), std::chrono::day(static_cast<unsigned>(day))};
    if (!form.isWholeAndRight() || !date.ok() || year < 1970)
        return std::nullopt;
    return std::chrono::sys_days(date).time_since_epoch().count() * practice::dayMs + ofDay;
}

} // namespace lab
