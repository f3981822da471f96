#pragma once

#include "lab/core/study/StudyError.h"

#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lab {

/// Numbers and texts one behind the other, the lowest byte first.
class ByteWriter final {
public:
    void number(std::uint64_t value, std::size_t size = 8)
    {
        for (std::size_t i = 0; i < size; ++i)
            m_bytes += static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
    }
    void real(double value) { number(std::bit_cast<std::uint64_t>(value)); }
    void figure(const std::optional<double>& value)
    {
        number(value ? 1 : 0, 1);
        if (value)
            real(*value);
    }
    void text(std::string_view value)
    {
        number(value.size());
        m_bytes += value;
    }
    [[nodiscard]] std::string take() { return std::move(m_bytes); }

private:
    std::string m_bytes;
};

/// Reads the same. Throws StudyError when there is less than wanted.
class ByteReader final {
public:
    explicit ByteReader(std::string_view bytes)
        : m_rest(bytes)
    {
    }
    [[nodiscard]] std::uint64_t number(std::size_t size = 8)
    {
        const std::string_view bytes = part(size);
        std::uint64_t value = 0;
        for (std::size_t i = size; i-- > 0;)
            value = value << 8 | static_cast<unsigned char>(bytes[i]);
        return value;
    }
    [[nodiscard]] double real() { return std::bit_cast<double>(number()); }
    [[nodiscard]] std::optional<double> figure()
    {
        return number(1) != 0 ? std::optional(real()) : std::nullopt;
    }
    [[nodiscard]] std::string text() { return std::string(part(number())); }
    [[nodiscard]] bool isAtEnd() const { return m_rest.empty(); }

private:
    [[nodiscard]] std::string_view part(std::uint64_t size)
    {
        if (size > m_rest.size())
            throw StudyError("a result is cut off");
        const std::string_view bytes = m_rest.substr(0, static_cast<std::size_t>(size));
        m_rest.remove_prefix(bytes.size());
        return bytes;
    }

    std::string_view m_rest;
};

} // namespace lab
