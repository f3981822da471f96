#pragma once

#include <QColor>

#include <algorithm>
#include <cmath>

/// How well one colour is read on another: 1 to 21, as the Web Content Accessibility Guidelines work it out.
/// Text needs 4.5.
[[nodiscard]] inline double contrastRatio(const QColor& text, const QColor& ground)
{
    const auto linear
        = [](double part) { return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); };
    const auto luminance = [&](const QColor& color) {
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
            + 0.0722 * linear(color.blueF());
    };
    const auto [darker, lighter] = std::minmax({luminance(text), luminance(ground)});
    return (lighter + 0.05) / (darker + 0.05);
}
