#include "chart/data/DrawingRecords.h"

#include "chart/data/ColorText.h"
#include "chart/data/DrawingKind.h"
#include "net/records/JsonNumber.h"

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// 0 for what is no time that 64 bits hold.
qint64 readTime(const QJsonValue& value)
{
    if (value.isString())
        return value.toString().toLongLong();
    constexpr double beyond = 9223372036854775808.0; // 2 to the power of 63, the first that does not fit
    const double time = value.toDouble();
    return time >= -beyond && time < beyond ? static_cast<qint64>(time) : 0;
}

DrawingPoint readPoint(const QJsonValue& value)
{
    const QJsonObject fields = value.toObject();
    return {readTime(fields.value("time"_L1)), jsonNumber(fields.value("price"_L1))};
}

std::optional<Drawing> readDrawing(const QJsonObject& fields)
{
    Drawing drawing;
    drawing.id = fields.value("id"_L1).toString();
    drawing.type = fields.value("toolType"_L1).toString();
    drawing.color = readColor(fields.value("style"_L1).toObject().value("color"_L1), drawing.color);
    const std::optional<DrawingKind> kind = drawingKind(drawing.type);
    if (!kind)
        return std::nullopt;
    const QJsonArray points = fields.value("points"_L1).toArray();
    const qsizetype count = std::min<qsizetype>(points.size(), pointsNeeded(*kind));
    for (qsizetype i = 0; i < count; ++i)
        drawing.points.append(readPoint(points.at(i)));
    return drawing;
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
    for (const DrawingPoint& point : drawing.points) {
        // As text: not every reader of JSON keeps all digits of a 64-bit number.
        points.append(QJsonObject{{u"time"_s, QString::number(point.time)}, {u"price"_s, point.price}});
    }
    return {{u"points"_s, points}, {u"style"_s, QJsonObject{{u"color"_s, drawing.color.name()}}}};
}

QJsonObject createDrawingBody(const Drawing& drawing, const QString& symbol, const QString& accountId)
{
    QJsonObject body = updateDrawingBody(drawing);
    body.insert(u"symbol"_s, symbol);
    body.insert(u"toolType"_s, drawing.type);
    if (!accountId.isEmpty())
        body.insert(u"accountId"_s, accountId);
    return body;
}
