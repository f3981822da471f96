#pragma once

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <numbers>
#include <string_view>

namespace practice {

/// Scrambles 64 bits so that neighbouring inputs share nothing.
[[nodiscard]] constexpr std::uint64_t mixBits(std::uint64_t value)
{
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9ULL;
    value = (value ^ (value >> 27)) * 0x94d049bb133111ebULL;
    return value ^ (value >> 31);
}

/// One key from several numbers; their order matters.
[[nodiscard]] constexpr std::uint64_t hashKey(std::initializer_list<std::uint64_t> parts)
{
    std::uint64_t key = 0x9e3779b97f4a7c15ULL;
    for (const std::uint64_t part : parts)
        key = mixBits(key + part * 0xd1342543de82ef95ULL + 0x632be59bd9b4e019ULL);
    return key;
}

/// The same for a text, so that a symbol's prices follow from its name and not from its place in a list.
[[nodiscard]] constexpr std::uint64_t hashText(std::string_view text)
{
    std::uint64_t key = 0xcbf29ce484222325ULL;
    for (const char c : text)
        key = (key ^ static_cast<unsigned char>(c)) * 0x100000001b3ULL;
    return mixBits(key);
}

/// A stream of random numbers that follows from its key alone: any point of the market's history is
/// reached by computing its key, without drawing what lies before it.
class HashRandom final {
public:
    explicit HashRandom(std::uint64_t key)
        : m_state(key)
    {
    }

    /// Uniform in the open interval (0, 1).
    [[nodiscard]] double uniform()
    {
        m_state += 0x9e3779b97f4a7c15ULL;
        return (static_cast<double>(mixBits(m_state) >> 11) + 0.5) * 0x1p-53;
    }

    /// Standard normal.
    [[nodiscard]] double gaussian()
    {
        if (m_hasSpare) {
            m_hasSpare = false;
            return m_spare;
        }
        const double radius = std::sqrt(-2.0 * std::log(uniform()));
        const double angle = 2.0 * std::numbers::pi * uniform();
        m_spare = radius * std::sin(angle);
        m_hasSpare = true;
        return radius * std::cos(angle);
    }

    /// Nearly normal with mean 0 and variance 1, never beyond 3.5, at a tenth of the cost: the sum of the
    /// four quarters of one scrambled word. For ticks, of which there are many.
    [[nodiscard]] double bell()
    {
        m_state += 0x9e3779b97f4a7c15ULL;
        const std::uint64_t word = mixBits(m_state);
        const std::uint64_t pairs = (word & 0x0000ffff0000ffffULL) + ((word >> 16) & 0x0000ffff0000ffffULL);
        const auto sum = static_cast<double>((pairs & 0xffffffffULL) + (pairs >> 32));
        return (sum - 2.0 * 65535.0) * (std::numbers::sqrt3 / 65536.0);
    }

private:
    std::uint64_t m_state;
    double m_spare = 0;
    bool m_hasSpare = false;
};

} // namespace practice
