#include "pixel/Spot.h"

#include <algorithm>

namespace {

/// A stored picture as a screen that can be looked at.
Screen screenOf(const Picture& picture, const PixelRect& part)
{
    return {picture.data(), part.width, part.height, static_cast<std::size_t>(part.width)};
}

} // namespace

std::optional<Spot> Spot::of(const PixelRect& part, const std::vector<Picture>& pictures)
{
    const PixelRect whole{0, 0, part.width, part.height};
    std::optional<PixelRect> box;
    for (std::size_t i = 1; i < pictures.size(); ++i) {
        const auto changed = screenOf(pictures[i], part).difference(whole, pictures.front());
        if (!changed)
            return std::nullopt;
        box = box ? box->united(*changed) : *changed;
    }
    if (!box)
        return std::nullopt;
    Spot spot{{part.x + box->x, part.y + box->y, box->width, box->height}, {}};
    for (const Picture& picture : pictures)
        spot.pictures.push_back(screenOf(picture, part).picture(*box));
    for (auto each = spot.pictures.cbegin(); each != spot.pictures.cend(); ++each) {
        if (std::find(std::next(each), spot.pictures.cend(), *each) != spot.pictures.cend())
            return std::nullopt;
    }
    return spot;
}
