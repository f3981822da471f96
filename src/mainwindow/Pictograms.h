#pragma once

#include "mainwindow/ActionIcons.h"

#include <QLatin1StringView>

class QPainter;

/// The drawing of a pictogram on a field of 16 by 16, as words separated by blanks. A small letter chooses
/// the ink (m the muted stroke, b, r, g, y accents), a capital letter a shape, numbers follow it:
/// P an open line through points, G a closed one, F a filled one, R and B a rectangle (x y width height)
/// stroked and filled, E and D an ellipse stroked and filled, A an arc (rectangle, start and span in
/// degrees). Coordinates ending in .5 keep lines crisp at 16 pixels.
[[nodiscard]] QLatin1StringView pictogramDrawing(Pictogram pictogram);

/// Paints a drawing on the field (0, 0, 16, 16) in the colours of the current theme. False when a word of it
/// could not be read; what was read before is painted.
bool paintDrawing(QPainter& painter, QLatin1StringView drawing);
