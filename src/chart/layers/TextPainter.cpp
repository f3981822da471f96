#include "chart/layers/TextPainter.h"

#include "chart/layers/PixelGrid.h"

#include <QColor>
#include <QFontMetrics>
#include <QPainter>
#include <QRect>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int pointSize = 8;
constexpr int smallPointSize = 7;
constexpr int boldWeight = 700;
/// Enough for every label of a large screen several times over.
constexpr qsizetype mostLayouts = 1024;
/// No widget is wide enough for more characters, and layouts of endless texts are slow.
constexpr qsizetype longestText = 1024;

/// Where a text of that ascent begins, whose baseline lies on a device pixel: between two, the smallest error
/// of rounding would move it.
QPointF topLeft(const QPainter& painter, int x, int baseline, int ascent)
{
    return PixelGrid(painter).snapped(x, baseline) - QPointF(0, ascent);
}

} // namespace

TextPainter::TextPainter()
    : m_normal(faceOf(pointSize, Weight::Normal))
    , m_bold(faceOf(pointSize, Weight::Bold))
    , m_small(faceOf(smallPointSize, Weight::Normal))
{
}

TextPainter::Face TextPainter::faceOf(int points, Weight weight)
{
    Face face;
    face.font = QFont(u"Segoe UI"_s, points);
    if (weight == Weight::Bold)
        face.font.setWeight(static_cast<QFont::Weight>(boldWeight));
    const QFontMetrics metrics(face.font);
    face.ascent = metrics.ascent();
    face.height = metrics.height();
    return face;
}

const TextPainter::Layout& TextPainter::layout(Face& face, const QString& text)
{
    if (const auto known = face.layouts.constFind(text); known != face.layouts.constEnd())
        return *known;
    if (face.layouts.size() >= mostLayouts)
        face.layouts.clear();
    Layout layout;
    layout.text.setTextFormat(Qt::PlainText);
    layout.text.setText(text.left(longestText));
    layout.text.prepare(QTransform(), face.font);
    layout.width = static_cast<int>(std::ceil(layout.text.size().width()));
    layout.advance = QFontMetrics(face.font).horizontalAdvance(layout.text.text());
    return *face.layouts.insert(text, layout);
}

void TextPainter::draw(QPainter& painter, const QRect& box, Qt::Alignment alignment, const QString& text,
    const QColor& color, Weight weight)
{
    if (text.isEmpty())
        return;
    Face& used = face(weight);
    const Layout& line = layout(used, text);
    if (alignment.testFlag(Qt::AlignHCenter) && line.width > box.width())
        return drawSqueezed(painter, box, used, text, color);
    int x = box.left();
    if (alignment.testFlag(Qt::AlignHCenter))
        x += (box.width() - line.width) / 2;
    else if (alignment.testFlag(Qt::AlignRight))
        x += box.width() - line.width;
    const int y = box.top() + (box.height() - used.height) / 2;
    const bool overflows = line.width > box.width();
    if (overflows) {
        painter.save();
        painter.setClipRect(box, Qt::IntersectClip);
    }
    painter.setFont(used.font);
    painter.setPen(color);
    painter.drawStaticText(topLeft(painter, x, y + used.ascent, used.ascent), line.text);
    if (overflows)
        painter.restore();
}

void TextPainter::drawSqueezed(
    QPainter& painter, const QRect& box, Face& face, const QString& text, const QColor& color)
{
    constexpr int margin = 1;
    const Layout& line = layout(face, text);
    painter.save();
    const int baseline = box.top() + (box.height() - face.height) / 2 + face.ascent;
    painter.translate(PixelGrid(painter).snapped(box.left() + margin, baseline));
    painter.scale(double(std::max(box.width() - 2 * margin, 1)) / line.width, 1.0);
    painter.setFont(face.font);
    painter.setPen(color);
    // Not the kept layout: Qt would work it out anew for this scale, and again when it is next drawn without.
    painter.drawText(0, 0, line.text.text());
    painter.restore();
}

void TextPainter::drawAt(QPainter& painter, const QPoint& baseline, const QString& text, const QColor& color)
{
    drawAt(painter, baseline, m_normal, text, color);
}

void TextPainter::drawSmallAt(
    QPainter& painter, const QPoint& baseline, const QString& text, const QColor& color)
{
    drawAt(painter, baseline, m_small, text, color);
}

void TextPainter::drawAt(
    QPainter& painter, const QPoint& baseline, Face& face, const QString& text, const QColor& color)
{
    if (text.isEmpty())
        return;
    painter.setFont(face.font);
    painter.setPen(color);
    painter.drawStaticText(
        topLeft(painter, baseline.x(), baseline.y(), face.ascent), layout(face, text).text);
}

int TextPainter::advance(const QString& text)
{
    return layout(m_normal, text).advance;
}
