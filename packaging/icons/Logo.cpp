#include "packaging/icons/Logo.h"

#include <QList>
#include <QPainter>
#include <QRect>

using namespace Qt::StringLiterals;

namespace {

constexpr int smallestDetailed = 32;

/// Places are thousandths of the logo's edge.
constexpr int edge = 1000;
constexpr QRgb groundStart = qRgb(0x2d, 0xd4, 0xbf);
constexpr QRgb groundEnd = qRgb(0x25, 0x63, 0xeb);
constexpr QRect ground(20, 20, 960, 960);
constexpr int groundRadius = 220;
constexpr int solid = 255;
constexpr int faint = 130;

/// A white rectangle with round corners; alpha from 0 to 255.
struct Shape {
    QRect place;
    int radius, alpha;
};

/// A candle: centre x, top and bottom of the body, body width, wick ends.
struct LogoCandle {
    int x, top, bottom, width, wickTop, wickBottom;
};

constexpr int cornerRadius = 25;

QList<Shape> candle(const LogoCandle& candle, int wick, int alpha)
{
    const QRect line(candle.x - wick / 2, candle.wickTop, wick, candle.wickBottom - candle.wickTop);
    const QRect body(candle.x - candle.width / 2, candle.top, candle.width, candle.bottom - candle.top);
    return {{line, wick / 2, alpha}, {body, cornerRadius, alpha}};
}

/// A "T" whose stem is a candle with its wick, between a lower and a higher neighbour.
QList<Shape> shapes(bool detailed)
{
    QList<Shape> all;
    if (detailed) {
        all += candle({250, 560, 740, 110, 490, 820}, 28, faint);
        all += candle({750, 420, 620, 110, 360, 700}, 28, faint);
    }
    all += Shape{QRect(200, 190, 600, detailed ? 110 : 160), cornerRadius, solid};
    all += candle({500, 250, 720, detailed ? 150 : 200, 250, 860}, detailed ? 36 : 80, solid);
    return all;
}

QString rectangle(const QRect& place, int radius, const QString& fill)
{
    return u"  <rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" rx=\"%5\" %6/>\n"_s.arg(place.x())
        .arg(place.y())
        .arg(place.width())
        .arg(place.height())
        .arg(radius)
        .arg(fill);
}

} // namespace

QImage drawLogo(int size)
{
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(double(size) / edge, double(size) / edge);
    painter.setPen(Qt::NoPen);

    QLinearGradient colors(0.0, 0.0, edge, edge);
    colors.setColorAt(0.0, groundStart);
    colors.setColorAt(1.0, groundEnd);
    painter.setBrush(colors);
    painter.drawRoundedRect(ground, groundRadius, groundRadius);
    for (const Shape& shape : shapes(size >= smallestDetailed)) {
        painter.setBrush(QColor(255, 255, 255, shape.alpha));
        painter.drawRoundedRect(shape.place, shape.radius, shape.radius);
    }
    return image;
}

QByteArray logoAsSvg()
{
    QString svg = uR"(<?xml version="1.0" encoding="UTF-8"?>
<svg xmlns="http://www.w3.org/2000/svg" width="256" height="256" viewBox="0 0 %1 %1">
  <title>Tavoran Terminal</title>
  <linearGradient id="ground" gradientUnits="userSpaceOnUse" x1="0" y1="0" x2="%1" y2="%1">
    <stop offset="0" stop-color="%2"/>
    <stop offset="1" stop-color="%3"/>
  </linearGradient>
)"_s.arg(edge)
                      .arg(QColor(groundStart).name(), QColor(groundEnd).name());
    svg += rectangle(ground, groundRadius, u"fill=\"url(#ground)\""_s);
    for (const Shape& shape : shapes(true)) {
        const QString opacity = shape.alpha == solid
            ? QString()
            : u" fill-opacity=\"%1\""_s.arg(shape.alpha / 255.0, 0, 'f', 2);
        svg += rectangle(shape.place, shape.radius, u"fill=\"#ffffff\""_s + opacity);
    }
    return (svg + u"</svg>\n"_s).toUtf8();
}
