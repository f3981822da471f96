#include "app/base/NumberFormat.h"
#include "chart/data/DrawingGeometry.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/Layers.h"
#include "chart/layers/LeftTexts.h"
#include "chart/layers/LineStrokes.h"
#include "chart/layers/Strokes.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr int fillAlpha = 28;
constexpr int selectedWidth = 2;
/// Longer than any text beside a retracement, in pixels: a text that begins further left of the plot than
/// this, or beyond its right edge, cannot be seen.
constexpr int textReach = 1000;

/// Paints within the plot, except for the texts beside a retracement: those of a drawing that ends at the
/// newest candle would be cut off.
class Artist {
public:
    Artist(QPainter& painter, const ChartFrame& frame)
        : m_painter(painter)
        , m_frame(frame)
        , m_plot(frame.view.plot())
        , m_geometry(frame.view, frame.candles, frame.timeframeMs)
    {
    }

    void paint(const Drawing& drawing)
    {
        const std::optional<DrawingGeometry::Shape> shape = m_geometry.shape(drawing);
        if (!shape)
            return;
        m_color = drawing.color.isValid() ? drawing.color : Drawing().color;
        m_selected = drawing.selected;
        m_style.width = m_selected ? selectedWidth : 1;
        switch (shape->kind) {
        case DrawingKind::HorizontalLine:
            return paintHorizontalLine(*shape);
        case DrawingKind::VerticalLine:
            return paintVerticalLine(*shape);
        case DrawingKind::TrendLine:
            return paintTrendLine(*shape);
        case DrawingKind::Rectangle:
            return paintRectangle(*shape);
        case DrawingKind::Fibonacci:
            return paintFibonacci(*shape);
        }
    }

private:
    void line(const QPoint& from, const QPoint& to)
    {
        strokes::between(m_painter, from, to, m_plot, m_color, m_style);
    }

    void handle(const QRect& square)
    {
        if (m_selected)
            Strokes(m_painter).box(square.intersected(m_plot), m_color);
    }

    void paintHorizontalLine(const DrawingGeometry::Shape& shape)
    {
        if (!m_geometry.isShown(shape.first.price))
            return;
        const int y = shape.from.y();
        line(QPoint(m_plot.left(), y), QPoint(m_plot.right(), y));
        QRect room = lefttexts::aboveLine(m_frame, y, 12);
        room.setWidth(120);
        m_frame.texts->draw(
            m_painter, room, Qt::AlignLeft, formatPrice(shape.first.price, m_frame.digits), m_color);
        handle(m_geometry.horizontalLineHandle(y));
    }

    void paintVerticalLine(const DrawingGeometry::Shape& shape)
    {
        const int x = shape.from.x();
        line(QPoint(x, m_plot.top()), QPoint(x, m_plot.bottom()));
        handle(m_geometry.verticalLineHandle(shape.from));
    }

    void paintTrendLine(const DrawingGeometry::Shape& shape)
    {
        line(shape.from, shape.to);
        handles(shape);
    }

    void paintRectangle(const DrawingGeometry::Shape& shape)
    {
        const QPoint corner(std::min(shape.from.x(), shape.to.x()), std::min(shape.from.y(), shape.to.y()));
        const QPoint opposite(std::max(shape.from.x(), shape.to.x()), std::max(shape.from.y(), shape.to.y()));
        QColor fill = m_color;
        fill.setAlpha(fillAlpha);
        Strokes(m_painter).area(QRect(corner, opposite).intersected(m_plot), fill);
        strokes::boxBetween(m_painter, corner, opposite, m_plot, m_color, m_style);
    }

    void paintFibonacci(const DrawingGeometry::Shape& shape)
    {
        const int left = std::min(shape.from.x(), shape.to.x());
        const int right = std::max(shape.from.x(), shape.to.x());
        for (const double ratio : DrawingGeometry::fibonacciRatios) {
            const double price = DrawingGeometry::fibonacciPrice(shape, ratio);
            if (!m_geometry.isShown(price))
                continue;
            const int y = m_geometry.row(price);
            line(QPoint(left, y), QPoint(right, y));
            if (right > -textReach && right < m_frame.view.size().width())
                m_frame.texts->drawSmallAt(m_painter, QPoint(right + 4, y + 4),
                    DrawingGeometry::fibonacciText(ratio, price, m_frame.digits), m_color);
        }
        handles(shape);
    }

    void handles(const DrawingGeometry::Shape& shape)
    {
        handle(DrawingGeometry::handle(shape.from));
        handle(DrawingGeometry::handle(shape.to));
    }

    QPainter& m_painter;
    const ChartFrame& m_frame;
    QRect m_plot;
    DrawingGeometry m_geometry;
    QColor m_color;
    strokes::LineStyle m_style;
    bool m_selected = false;
};

} // namespace

void layers::paintDrawings(QPainter& painter, const ChartFrame& frame)
{
    Artist artist(painter, frame);
    for (const Drawing& drawing : frame.drawings)
        artist.paint(drawing);
}
