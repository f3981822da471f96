#include "pixel/Screen.h"

#include <algorithm>

namespace {

constexpr std::uint32_t colorBits = 0x00ffffff;

} // namespace

Screen::Screen(const volatile std::uint32_t* pixels, int width, int height, std::size_t wordsPerLine)
    : m_pixels(pixels)
    , m_width(width)
    , m_height(height)
    , m_wordsPerLine(wordsPerLine)
{
}

bool Screen::contains(const PixelRect& part) const
{
    return part.x >= 0 && part.y >= 0 && part.width > 0 && part.height > 0 && part.width <= m_width - part.x
        && part.height <= m_height - part.y;
}

Picture Screen::picture(const PixelRect& part) const
{
    Picture picture;
    picture.reserve(static_cast<std::size_t>(part.width) * static_cast<std::size_t>(part.height));
    for (int y = part.y; y < part.y + part.height; ++y) {
        for (int x = part.x; x < part.x + part.width; ++x)
            picture.push_back(at(x, y));
    }
    return picture;
}

bool Screen::shows(const PixelRect& part, const Picture& picture) const
{
    auto wanted = picture.cbegin();
    for (int y = part.y; y < part.y + part.height; ++y) {
        for (int x = part.x; x < part.x + part.width; ++x) {
            if (at(x, y) != *wanted++)
                return false;
        }
    }
    return true;
}

std::optional<PixelRect> Screen::difference(const PixelRect& part, const Picture& picture) const
{
    int left = part.x + part.width;
    int top = part.y + part.height;
    int right = part.x - 1;
    int bottom = part.y - 1;
    auto before = picture.cbegin();
    for (int y = part.y; y < part.y + part.height; ++y) {
        for (int x = part.x; x < part.x + part.width; ++x) {
            if (at(x, y) == *before++)
                continue;
            left = std::min(left, x);
            top = std::min(top, y);
            right = std::max(right, x);
            bottom = std::max(bottom, y);
        }
    }
    if (right < left)
        return std::nullopt;
    return PixelRect{left, top, right - left + 1, bottom - top + 1};
}

std::uint32_t Screen::at(int x, int y) const
{
    return m_pixels[static_cast<std::size_t>(y) * m_wordsPerLine + static_cast<std::size_t>(x)] & colorBits;
}
