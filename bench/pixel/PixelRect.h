#pragma once

#include <algorithm>

/// A part of the screen, in pixels from its upper left corner.
struct PixelRect final {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const PixelRect&) const = default;

    /// The least part that holds both.
    [[nodiscard]] PixelRect united(const PixelRect& other) const
    {
        const int left = std::min(x, other.x);
        const int top = std::min(y, other.y);
        const int right = std::max(x + width, other.x + other.width);
        const int bottom = std::max(y + height, other.y + other.height);
        return {left, top, right - left, bottom - top};
    }
};
