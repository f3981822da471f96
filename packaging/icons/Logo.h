#pragma once

#include <QByteArray>
#include <QImage>

/// The logo as a square picture of `size` pixels; below 32 it has fewer and bolder parts.
QImage drawLogo(int size);

/// The same with all its parts, as the text of an SVG file.
QByteArray logoAsSvg();
