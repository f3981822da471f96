#pragma once

#include "chart/data/Drawing.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

/// The drawings of a chart as the server sends and takes them.

/// Reads an array of {"id", "toolType", "points", "style"}. Only drawings of an unknown kind are left out. A
/// time or price that is missing or cannot be read is 0, a drawing with too few points keeps those that it
/// has and is not drawn (see DrawingGeometry), and a colour that does not parse is the usual one. Anything
/// but an array is an empty one.
[[nodiscard]] QList<Drawing> readDrawings(const QJsonDocument& document);

/// The body that creates the drawing for a symbol and an account ("" for none).
[[nodiscard]] QJsonObject createDrawingBody(
    const Drawing& drawing, const QString& symbol, const QString& accountId);

/// The body that moves and recolours a stored drawing.
[[nodiscard]] QJsonObject updateDrawingBody(const Drawing& drawing);
