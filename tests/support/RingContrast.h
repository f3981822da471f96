#pragma once

#include <QImage>
#include <QRect>

#include <algorithm>
#include <cmath>

/// How well a ring of the focus stands out, as the web's rules for accessible content measure it.
namespace fixtures {

[[nodiscard]] inline double luminance(QRgb color)
{
    const auto linear = [](int channel) {
        const double value = channel / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) + 0.0722 * linear(qBlue(color));
}

/// 1 for the same colour, 21 for black on white.
[[nodiscard]] inline double contrast(QRgb a, QRgb b)
{
    const auto [low, high] = std::minmax(luminance(a), luminance(b));
    return (high + 0.05) / (low + 0.05);
}

/// The least contrast along a ring, `width` pixels wide, on the inside of `edge`: at each place across the
/// ring between its strongest pixel and what was there before, and between it and what lies beside the ring.
[[nodiscard]] inline double leastContrast(
    const QImage& before, const QImage& after, const QRect& edge, int width)
{
    double least = 21.0;
    const auto judge = [&](QPoint outermost, QPoint inward) {
        double strongest = 1.0;
        for (int depth = 0; depth < width; ++depth) {
            const QPoint place = outermost + inward * depth;
            strongest = std::max(strongest, contrast(before.pixel(place), after.pixel(place)));
        }
        for (const QPoint beside : {outermost - inward, outermost + inward * width}) {
            if (!after.rect().contains(beside))
                continue;
            double strongestBeside = 1.0;
            for (int depth = 0; depth < width; ++depth) {
                const QRgb line = after.pixel(outermost + inward * depth);
                strongestBeside = std::max(strongestBeside, contrast(line, after.pixel(beside)));
            }
            strongest = std::min(strongest, strongestBeside);
        }
        least = std::min(least, strongest);
    };
    for (int x = edge.left() + width; x <= edge.right() - width; ++x) {
        judge({x, edge.top()}, {0, 1});
        judge({x, edge.bottom()}, {0, -1});
    }
    for (int y = edge.top() + width; y <= edge.bottom() - width; ++y) {
        judge({edge.left(), y}, {1, 0});
        judge({edge.right(), y}, {-1, 0});
    }
    return least;
}

} // namespace fixtures
