#pragma once

#include "pixel/PixelRect.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// Pixels of a part of a screen, row by row, each 0x00RRGGBB.
using Picture = std::vector<std::uint32_t>;

/// Pixels in memory that somebody else may be changing meanwhile; a view, which owns none of them.
class Screen final {
public:
    /// `wordsPerLine` from a row to the next.
    Screen(const volatile std::uint32_t* pixels, int width, int height, std::size_t wordsPerLine);

    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }
    /// Whether a part has pixels and all of them lie within the screen. All that is asked about below must.
    [[nodiscard]] bool contains(const PixelRect& part) const;

    [[nodiscard]] Picture picture(const PixelRect& part) const;
    /// Whether this part shows that picture now, to the last pixel.
    [[nodiscard]] bool shows(const PixelRect& part, const Picture& picture) const;
    /// The least part that holds every pixel in which this part now differs from that picture; nothing if
    /// none.
    [[nodiscard]] std::optional<PixelRect> difference(const PixelRect& part, const Picture& picture) const;

private:
    [[nodiscard]] std::uint32_t at(int x, int y) const;

    const volatile std::uint32_t* m_pixels;
    int m_width;
    int m_height;
    std::size_t m_wordsPerLine;
};
