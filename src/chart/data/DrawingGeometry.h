#pragma once

#include "chart/data/ChartView.h"
#include "chart/data/Drawing.h"
#include "chart/data/DrawingKind.h"

#include <QPoint>
#include <QRect>

#include <array>
#include <optional>
#include <span>

/// Where the drawings of one chart picture lie, for painting and for hit tests alike. Valid as long as the
/// candles are. A drawing of an unknown kind, with too few points or with a price that cannot be drawn has no
/// place, and no drawing has one while there are no candles.
class DrawingGeometry final {
public:
    /// How far from a line, in pixels, a press still selects it.
    static constexpr int reach = 6;
    static constexpr std::array fibonacciRatios{0.0, 0.236, 0.382, 0.5, 0.618, 0.786, 1.0};

    /// A drawing that can be drawn; both points are equal where the kind needs only one.
    struct Shape {
        DrawingKind kind = DrawingKind::HorizontalLine;
        DrawingPoint first;
        DrawingPoint second;
        QPoint from; ///< pixel of the first point; may lie far outside the plot
        QPoint to;   ///< pixel of the second point; may lie far outside the plot
    };

    /// `timeframeMs` is the length of a bar.
    DrawingGeometry(const ChartView& view, std::span<const Candle> candles, qint64 timeframeMs);

    /// The pixel of a point: on the grid of the bars, also where no candle is loaded.
    [[nodiscard]] std::optional<QPoint> pixel(const DrawingPoint& point) const;

    /// The point under a pixel, on the bar of the nearest loaded candle. Nothing without candles.
    [[nodiscard]] std::optional<DrawingPoint> anchor(const QPoint& pixel) const;

    [[nodiscard]] std::optional<Shape> shape(const Drawing& drawing) const;

    /// Whether a price lies within the height of the plot; levels that do not are not drawn.
    [[nodiscard]] bool isShown(double price) const { return m_view.prices().contains(price); }
    /// The pixel row of a shown price.
    [[nodiscard]] int row(double price) const { return m_view.pricePixel(price); }

    /// The part of the plot that a drawing takes up, lines as wide as a hand can aim; empty out of view.
    [[nodiscard]] QRect area(const Drawing& drawing) const;
    /// The same for a line across the plot at a price.
    [[nodiscard]] QRect lineArea(double price) const;

    /// Whether a press at a pixel selects the drawing. Only horizontal lines and trend lines can be selected
    /// so: the other kinds would take presses that are meant for the chart below them.
    [[nodiscard]] bool isHit(const Drawing& drawing, const QPoint& pixel) const;
    /// The topmost drawing that a press selects, or -1.
    [[nodiscard]] qsizetype topmostHit(std::span<const Drawing> drawings, const QPoint& pixel) const;

    /// The square that marks a selected drawing's point.
    [[nodiscard]] static QRect handle(const QPoint& point);
    /// The square that marks a selected horizontal line.
    [[nodiscard]] QRect horizontalLineHandle(int row) const;
    /// The square that marks a selected vertical line: at its point, kept within the height of the plot.
    [[nodiscard]] QRect verticalLineHandle(const QPoint& point) const;

    /// The price of a level between the first point's price (ratio 0) and the second's (ratio 1).
    [[nodiscard]] static double fibonacciPrice(const Shape& shape, double ratio);
    /// "61.8  1.23456": the ratio in percent and the level's price.
    [[nodiscard]] static QString fibonacciText(double ratio, double price, int digits);

private:
    ChartView m_view;
    std::span<const Candle> m_candles;
    qint64 m_timeframeMs;
};
