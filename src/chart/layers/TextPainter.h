#pragma once

#include <QFont>
#include <QHash>
#include <QStaticText>
#include <QString>

class QColor;
class QPainter;
class QPoint;
class QRect;

/// Draws the chart's short texts and keeps their layouts: most of them are the same from frame to frame,
/// and laying a text out costs more than drawing it. Texts are plain, whatever they hold.
class TextPainter final {
public:
    enum class Weight { Normal, Bold };

    TextPainter();

    /// One line within `box`, which also bounds it, vertically centred; `alignment` is the horizontal one. A
    /// centred text that is wider than the box is drawn narrower: a price with its ends cut off reads as
    /// another price.
    void draw(QPainter& painter, const QRect& box, Qt::Alignment alignment, const QString& text,
        const QColor& color, Weight weight = Weight::Normal);

    /// One line whose baseline starts at a point.
    void drawAt(QPainter& painter, const QPoint& baseline, const QString& text, const QColor& color);
    /// The same in the font of labels that stand close together.
    void drawSmallAt(QPainter& painter, const QPoint& baseline, const QString& text, const QColor& color);

    /// How far one line reaches, in pixels.
    [[nodiscard]] int advance(const QString& text);

private:
    struct Layout {
        QStaticText text;
        int width = 0;
        int advance = 0;
    };
    struct Face {
        QFont font;
        int ascent = 0;
        int height = 0;
        QHash<QString, Layout> layouts;
    };

    [[nodiscard]] Face& face(Weight weight) { return weight == Weight::Bold ? m_bold : m_normal; }
    [[nodiscard]] static Face faceOf(int points, Weight weight);
    [[nodiscard]] static const Layout& layout(Face& face, const QString& text);
    static void drawSqueezed(
        QPainter& painter, const QRect& box, Face& face, const QString& text, const QColor& color);
    static void drawAt(
        QPainter& painter, const QPoint& baseline, Face& face, const QString& text, const QColor& color);

    Face m_normal;
    Face m_bold;
    Face m_small;
};
