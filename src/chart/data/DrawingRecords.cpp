#include "chart/data/DrawingRecords.h"

#include "chart/data/ColorText.h"
#include "chart/data/DrawingKind.h"
#include "net/records/DrawingRecord.h"

#include <algorithm>
#include <optional>

namespace {

DrawingPoint readPoint(const QJsonObject& point)
{
    return {drawing::time(point), drawing::price(point)};
}

std::optional<Drawing> readDrawing(const QJsonObject& fields)
{
    Drawing read;
    read.id = drawing::id(fields);
    read.type = drawing::tool(fields);
    read.color = readColor(drawing::color(fields), read.color);
    const std::optional<DrawingKind> kind = drawingKind(read.type);
    if (!kind)
        return std::nullopt;
    const QJsonArray points = drawing::points(fields);
    const qsizetype count = std::min<qsizetype>(points.size(), pointsNeeded(*kind));
    for (qsizetype i = 0; i < count; ++i)
        read.points.append(readPoint(points.at(i).toObject()));
    return read;
}

} // namespace

QList<Drawing> readDrawings(const QJsonDocument& document)
{
    QList<Drawing> drawings;
    const QJsonArray records = document.array();
    for (const QJsonValue record : records) {
        if (const std::optional<Drawing> drawing = readDrawing(record.toObject()))
            drawings.append(*drawing);
    }
    return drawings;
}

QJsonObject updateDrawingBody(const Drawing& drawing)
{
    QJsonArray points;
    for (const DrawingPoint& point : drawing.points)
        points.append(drawing::point(point.time, point.price));
    return drawing::updateBody(points, drawing.color.name());
}

QJsonObject createDrawingBody(const Drawing& drawing, const QString& symbol, const QString& accountId)
{
    QJsonObject body = updateDrawingBody(drawing);
    drawing::addOrigin(body, drawing.type, symbol, accountId);
    return body;
}
