// Draws the pictures we ship: draw_logo OUTPUT_FOLDER writes the logo as logo.png and
// tavoran-terminal-SIZE.png, and the arrows of spin and combo boxes, arrow-up.png and arrow-down.png. Run it
// by hand after a change and commit the pictures.

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

constexpr int resourceSize = 256;
constexpr int smallestDetailed = 32;

/// A candle standing on a unit square: centre x, top and bottom of the body, body width, wick ends.
struct LogoCandle {
    double x, top, bottom, width, wickTop, wickBottom;
};

void drawCandle(QPainter& painter, const LogoCandle& candle, const QColor& color, double wick)
{
    painter.setBrush(color);
    painter.drawRoundedRect(
        QRectF(candle.x - wick / 2, candle.wickTop, wick, candle.wickBottom - candle.wickTop), wick / 2,
        wick / 2);
    painter.drawRoundedRect(
        QRectF(candle.x - candle.width / 2, candle.top, candle.width, candle.bottom - candle.top), 0.025,
        0.025);
}

/// A "T" whose stem is a candle with its wick, between a lower and a higher neighbour.
QImage drawLogo(int size)
{
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size, size);
    painter.setPen(Qt::NoPen);

    QLinearGradient ground(0.0, 0.0, 1.0, 1.0);
    ground.setColorAt(0.0, QColor(0x2d, 0xd4, 0xbf));
    ground.setColorAt(1.0, QColor(0x25, 0x63, 0xeb));
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(0.02, 0.02, 0.96, 0.96), 0.22, 0.22);

    const bool detailed = size >= smallestDetailed;
    const QColor white(255, 255, 255);
    if (detailed) {
        const QColor faint(255, 255, 255, 130);
        drawCandle(painter, {0.25, 0.56, 0.74, 0.11, 0.49, 0.82}, faint, 0.028);
        drawCandle(painter, {0.75, 0.42, 0.62, 0.11, 0.36, 0.70}, faint, 0.028);
    }
    painter.setBrush(white);
    painter.drawRoundedRect(QRectF(0.2, 0.19, 0.6, detailed ? 0.11 : 0.16), 0.025, 0.025);
    drawCandle(painter, {0.5, 0.25, 0.72, detailed ? 0.15 : 0.2, 0.25, 0.86}, white, detailed ? 0.036 : 0.08);
    return image;
}

/// A grey that stands out in both looks.
QImage drawArrow(bool up)
{
    QImage image(9, 6, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x8a, 0x8a, 0x8a));
    const double base = up ? 5.0 : 1.0;
    painter.drawPolygon(QPolygonF{{1.0, base}, {8.0, base}, {4.5, up ? 1.0 : 5.0}});
    return image;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 2)
        qFatal("usage: draw_logo OUTPUT_FOLDER");
    const QDir folder(arguments.at(1));
    bool saved = drawLogo(resourceSize).save(folder.filePath(u"logo.png"_s));
    saved &= drawArrow(true).save(folder.filePath(u"arrow-up.png"_s));
    saved &= drawArrow(false).save(folder.filePath(u"arrow-down.png"_s));
    for (const int size : {16, 24, 32, 48, 64, 128, 256, 512})
        saved &= drawLogo(size).save(folder.filePath(u"tavoran-terminal-%1.png"_s.arg(size)));
    return saved ? 0 : 1;
}
