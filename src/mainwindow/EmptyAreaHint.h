#pragma once

#include <QString>

class QColor;
class QPainter;
class QRect;

/// Paints a sentence in the middle of an empty area, with the painter's font: wrapped where the area is
/// narrow, and cut with an ellipsis, on one line, where it has no room for all of it.
void paintEmptyAreaHint(QPainter& painter, const QRect& area, const QString& text, const QColor& color);
