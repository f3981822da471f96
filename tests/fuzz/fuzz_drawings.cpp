// The drawings that the server keeps, read and written back.

#include "fuzz/FuzzQt.h"

#include "chart/data/DrawingKind.h"
#include "chart/data/DrawingMerge.h"
#include "chart/data/DrawingRecords.h"

using fuzz::demand;

namespace fuzz_drawings {

namespace {

QJsonDocument asRead(const QJsonArray& records)
{
    return QJsonDocument::fromJson(fuzz::jsonOf(records));
}

QJsonArray recordsOf(const QList<Drawing>& drawings)
{
    QJsonArray records;
    for (const Drawing& drawing : drawings) {
        QJsonObject record = createDrawingBody(drawing, QStringLiteral("EURUSD"), QStringLiteral("a1"));
        record.insert(QStringLiteral("id"), drawing.id);
        records.append(record);
    }
    return records;
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    const QJsonDocument document = QJsonDocument::fromJson(fuzz::bytesOf(fuzz::textOf(data, size)));
    const QList<Drawing> drawings = readDrawings(document);
    demand(drawings.size() <= document.array().size(), "no drawing is made up");
    for (const Drawing& drawing : drawings) {
        const std::optional<DrawingKind> kind = drawingKind(drawing.type);
        demand(kind && drawing.points.size() <= pointsNeeded(*kind), "a drawing has the points of its kind");
        demand(drawing.color.isValid() && drawing.color.alpha() == 255, "a colour can be seen");
        for (const DrawingPoint& point : drawing.points)
            demand(fuzz::isAmount(point.price), "a price is an amount");
    }
    const QList<Drawing> again = readDrawings(asRead(recordsOf(drawings)));
    demand(again == drawings, "drawings come back as they were sent");
    demand(
        mergeDrawings(drawings, drawings, {}).size() >= drawings.size(), "no drawing of the server is lost");
    return 0;
}

const fuzz::Target target("drawings", &attempt);

} // namespace

} // namespace fuzz_drawings
