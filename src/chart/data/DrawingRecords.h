#pragma once

#include "chart/data/Drawing.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

/// The drawings of a chart as the server sends and takes them.

/// Reads an array of {"id", "toolType", "points", "style"}. A drawing of an unknown kind is left out, and
/// nothing else: a time or price that is missing or cannot be read is 0, a drawing with too few points keeps
/// those that it has and lies nowhere (see DrawingGeometry), and a colour that does not parse is the usual
/// one. Anything but an array is an empty one.
[[nodiscard]] QList<Drawing> readDrawings(const QJsonDocument& document);

/// What creates the drawing for a symbol and, unless it is empty, an account.
[[nodiscard]] QJsonObject createDrawingBody(
    const Drawing& drawing, const QString& symbol, const QString& accountId);

/// What moves and recolours a stored drawing.
[[nodiscard]] QJsonObject updateDrawingBody(const Drawing& drawing);
