#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

/// The length of the WebSocket frame with which the bytes begin, its head included, as a server sends one,
/// which masks nothing; nothing while the head has not come whole.
[[nodiscard]] inline std::optional<std::size_t> frameLength(std::string_view bytes)
{
    if (bytes.size() < 2)
        return std::nullopt;
    const auto byte = [bytes](std::size_t place) { return static_cast<unsigned char>(bytes[place]); };
    const std::size_t length = byte(1) & 0x7fU;
    const std::size_t extra = length == 126 ? 2 : length == 127 ? 8 : 0;
    if (extra == 0)
        return 2 + length;
    if (bytes.size() < 2 + extra)
        return std::nullopt;
    std::size_t longer = 0;
    for (std::size_t i = 0; i < extra; ++i)
        longer = longer << 8U | byte(2 + i);
    return 2 + extra + longer;
}
