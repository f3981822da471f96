#include "chart/layers/Curve.h"

#include "chart/data/ChartView.h"
#include "chart/layers/PixelGrid.h"

#include <QPainter>
#include <QRect>
#include <QRegion>
#include <QTransform>
#include <QVarLengthArray>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

/// Paints boxes of one row or one column, and joins those that continue each other.
class Runs final {
public:
    Runs(QPainter& painter, const QRect& within, const QColor& color)
        : m_painter(painter)
        , m_grid(painter)
        , m_within(m_grid.isWhole() ? within : pixelsOf(within))
        , m_color(color)
    {
    }

    /// Of the line, in what the boxes are counted.
    [[nodiscard]] int width() const { return m_width; }

    /// In what the boxes are counted: units where these are whole numbers of device pixels, else those.
    [[nodiscard]] QPoint place(const QPoint& unit) const { return m_grid.isWhole() ? unit : pixel(unit); }

    void add(const QRect& run)
    {
        const bool sameRow = run.height() == m_width && m_open.height() == m_width
            && run.top() == m_open.top() && run.left() <= m_open.right() + 1
            && run.right() >= m_open.left() - 1;
        const bool sameColumn = run.width() == m_width && m_open.width() == m_width
            && run.left() == m_open.left() && run.top() <= m_open.bottom() + 1
            && run.bottom() >= m_open.top() - 1;
        if (sameRow || sameColumn) {
            m_open = m_open.united(run);
            return;
        }
        close();
        m_open = run;
    }

    void finish()
    {
        close();
        if (!m_grid.isWhole()) {
            for (const QRect& box : m_boxes)
                m_grid.fill(m_painter, box.left(), box.top(), box.left() + box.width(),
                    box.top() + box.height(), m_color);
            return;
        }
        // Painting many boxes at once costs half, but only where they need not be scaled.
        if (m_painter.deviceTransform().type() > QTransform::TxTranslate) {
            for (const QRect& box : m_boxes)
                m_painter.fillRect(box, m_color);
            return;
        }
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(m_color);
        m_painter.drawRects(m_boxes.constData(), static_cast<int>(m_boxes.size()));
    }

private:
    void close()
    {
        const QRect part = m_open & m_within;
        if (!part.isEmpty())
            m_boxes.append(part);
    }

    [[nodiscard]] QPoint pixel(const QPoint& unit) const
    {
        return {static_cast<int>(m_grid.at(unit.x())), static_cast<int>(m_grid.at(unit.y()))};
    }

    [[nodiscard]] QRect pixelsOf(const QRect& box) const
    {
        return {pixel(box.topLeft()), pixel(box.bottomRight() + QPoint(1, 1)) - QPoint(1, 1)};
    }

    QPainter& m_painter;
    PixelGrid m_grid;
    QRect m_within;
    int m_width = m_grid.isWhole() ? 1 : static_cast<int>(m_grid.width(1));
    const QColor& m_color;
    QVarLengthArray<QRect, 1024> m_boxes;
    QRect m_open; ///< may still grow
};

void addSlope(Runs& line, const QPoint& start, const QPoint& end)
{
    const QPoint from = line.place(start);
    const QPoint to = line.place(end);
    const int width = to.x() - from.x();
    const int height = std::abs(to.y() - from.y());
    const int down = to.y() < from.y() ? -1 : 1;
    const bool flat = width >= height;
    const qint64 runs = std::min(width, height);
    const qint64 length = std::max(width, height);
    qint64 begin = 0;
    for (qint64 run = 0; run <= runs; ++run) {
        // The next run begins where the line comes nearer to the next row (or column) than to this one.
        const qint64 next = run < runs ? (length * (2 * run + 1) + 2 * runs - 1) / (2 * runs) : length + 1;
        const auto first = static_cast<int>(begin);
        const auto last = static_cast<int>(next - 1);
        const auto aside = static_cast<int>(run);
        if (flat)
            line.add(QRect(from.x() + first, from.y() + down * aside, last - first + 1, line.width()));
        else
            line.add(QRect(from.x() + aside, from.y() + down * (down > 0 ? first : last), line.width(),
                last - first + 1));
        begin = next;
    }
}

} // namespace

void curve::slope(
    QPainter& painter, const QPoint& from, const QPoint& to, const QRect& within, const QColor& color)
{
    Runs line(painter, within, color);
    addSlope(line, from, to);
    line.finish();
}

void curve::join(QPainter& painter, const ChartView& view, std::span<const double> values,
    const BarRange& bars, const Row& row, const QRect& within, const QRegion& exposed, const QColor& color)
{
    const qsizetype last = std::min(bars.last, static_cast<qsizetype>(values.size()) - 1);
    Runs line(painter, within, color);
    QPoint from;
    bool joined = false;
    for (qsizetype i = bars.first; i <= last; ++i) {
        const double value = values[static_cast<std::size_t>(i)];
        const bool present = !std::isnan(value);
        const QPoint to = present ? QPoint(view.barPixel(i), row(value)) : QPoint();
        if (joined && present) {
            // One pixel more on each side, since a part may end between two pixels of the screen.
            const QPoint top(from.x() - 1, std::min(from.y(), to.y()) - 1);
            const QPoint bottom(to.x() + 1, std::max(from.y(), to.y()) + 1);
            if (exposed.intersects(QRect(top, bottom)))
                addSlope(line, from, to);
        }
        from = to;
        joined = present;
    }
    line.finish();
}
