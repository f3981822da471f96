#pragma once

#include "practice/core/Types.h"

#include <charconv>
#include <concepts>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace lab {

/// A column that is missing or does not read as what it should be.
class BadColumn final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The columns of a line, one after the other, or the words of a column. Each function throws BadColumn.
class LineReader final {
public:
    explicit LineReader(std::string_view line, char separator = '\t')
        : m_rest(line)
        , m_separator(separator)
    {
    }

    [[nodiscard]] bool atEnd() const { return m_isAtEnd; }

    /// As it stands there.
    [[nodiscard]] std::string_view word()
    {
        if (m_isAtEnd)
            throw BadColumn("a column is missing");
        const std::size_t end = m_rest.find(m_separator);
        const std::string_view word = m_rest.substr(0, end);
        m_isAtEnd = end == std::string_view::npos;
        m_rest.remove_prefix(m_isAtEnd ? m_rest.size() : end + 1);
        return word;
    }

    /// For a message: the beginning, in quotation marks, with a question mark for what is no plain sign.
    [[nodiscard]] static std::string quoted(std::string_view text);

    /// Without its escapes.
    [[nodiscard]] std::string text();

    /// Finite, and no larger than anything that a session holds.
    template <typename Number> [[nodiscard]] Number number()
    {
        const std::string_view text = word();
        Number value{};
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, value);
        if (error != std::errc() || stop != end)
            throw BadColumn(quoted(text) + " is no number");
        // Prices, amounts and times are smaller by far; damage would spoil sums. False for what is not a
        // number.
        if (!(static_cast<double>(value) >= -largestNumber && static_cast<double>(value) <= largestNumber))
            throw BadColumn(quoted(text) + " is no number of a session");
        return value;
    }

    template <typename Value, typename Find> [[nodiscard]] Value oneOf(const Find& find)
    {
        const std::string_view text = word();
        const std::optional<Value> value = find(text);
        if (!value)
            throw BadColumn(quoted(text) + " is not known here");
        return *value;
    }

    void expectEnd() const
    {
        if (!m_isAtEnd)
            throw BadColumn("there are too many columns");
    }

private:
    static constexpr double largestNumber = 1e15;

    std::string_view m_rest;
    char m_separator;
    bool m_isAtEnd = false;
};

} // namespace lab
