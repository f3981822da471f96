#pragma once

#include "chart/layers/DeviceScale.h"

#include <QColor>
#include <QPainter>
#include <QRectF>

#include <algorithm>
#include <cmath>

/// The device pixels under a painter whose units are those of the chart. Where a unit is no whole number of
/// device pixels, Qt rounds each edge of a box by itself, so that lines of one unit are now one pixel wide
/// and now two. Here only the near edge is rounded, and the width is the same wherever the line lies.
class PixelGrid final {
public:
    /// Counts a unit as one pixel where the painter does more than scale and move.
    explicit PixelGrid(const QPainter& painter)
    {
        const qreal scale = evenDeviceScale(painter);
        if (scale < smallestScale || scale > largestScale)
            return;
        m_scale = scale;
        m_whole = scale == std::floor(scale);
    }

    /// Whether a unit is a whole number of pixels, so that Qt has nothing to round.
    [[nodiscard]] bool isWhole() const { return m_whole; }
    [[nodiscard]] double scale() const { return m_scale; }

    /// The first pixel of a unit.
    [[nodiscard]] qint64 at(qint64 unit) const { return std::llround(static_cast<double>(unit) * m_scale); }
    /// A place within the first pixel of both units, in units, for what is not painted in boxes: so far from
    /// its edge that no error of rounding leads beyond it.
    [[nodiscard]] QPointF snapped(int x, int y) const
    {
        if (m_whole)
            return {static_cast<double>(x), static_cast<double>(y)};
        constexpr double within = 0.125;
        return {
            (static_cast<double>(at(x)) + within) / m_scale, (static_cast<double>(at(y)) + within) / m_scale};
    }
    /// How many pixels stand for so many units, wherever they lie. Halves are rounded down, so that what has
    /// a gap of one unit between itself and the next one keeps a gap.
    [[nodiscard]] qint64 length(int units) const
    {
        return static_cast<qint64>(std::ceil(units * m_scale - 0.5));
    }
    /// How wide a line is, in pixels: rounded down, as thin lines stay crisp.
    [[nodiscard]] qint64 width(int units) const
    {
        return std::max<qint64>(static_cast<qint64>(units * m_scale), 1);
    }

    /// Fills a box of pixels, the far edges excluded.
    void fill(
        QPainter& painter, qint64 left, qint64 top, qint64 right, qint64 bottom, const QColor& color) const
    {
        const auto units = [this](qint64 pixels) { return static_cast<double>(pixels) / m_scale; };
        painter.fillRect(
            QRectF(QPointF(units(left), units(top)), QPointF(units(right), units(bottom))), color);
    }

private:
    static constexpr double smallestScale = 0.25;
    static constexpr double largestScale = 8.0;

    double m_scale = 1.0;
    bool m_whole = true;
};
