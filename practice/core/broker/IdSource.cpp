#include "practice/core/broker/IdSource.h"

#include <cstddef>
#include <string_view>

namespace practice {

UuidSource::UuidSource(std::uint64_t seed)
    : m_random(seed)
{
}

UuidSource UuidSource::fresh()
{
    std::random_device device;
    return UuidSource(std::uint64_t{device()} << 32 | device());
}

std::string UuidSource::operator()()
{
    // y is the variant digit (8..b), 4 the version; every x is random.
    constexpr std::string_view shape = "xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx";
    constexpr std::string_view hex = "0123456789abcdef";
    std::uint64_t bits = 0;
    int left = 0;
    std::string id(shape);
    for (char& c : id) {
        if (c != 'x' && c != 'y')
            continue;
        if (left == 0) {
            bits = m_random();
            left = 16;
        }
        const auto nibble = static_cast<std::size_t>(bits & 0xF);
        bits >>= 4;
        --left;
        c = hex[c == 'y' ? (nibble & 0x3) | 0x8 : nibble];
    }
    return id;
}

} // namespace practice
