#pragma once

#include "chart/DrawingBuilders.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/DrawingStore.h"
#include "support/ServedClient.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <memory>

/// A chart whose objects a server keeps.
namespace fixtures {

inline const QByteArray drawingsPath = "/api/drawings";
inline const QByteArray listOne = "/api/drawings?symbol=EURUSD&accountId=one";
inline const QByteArray listTwo = "/api/drawings?symbol=EURUSD&accountId=two";
inline const StubAnswer created = StubAnswer::json("{}", 201);

/// Horizontal lines as "id" at a price, as the server lists them.
inline StubAnswer listOf(const QList<QPair<QString, double>>& lines)
{
    using namespace Qt::StringLiterals;
    QJsonArray records;
    for (const auto& [id, price] : lines) {
        records.append(QJsonObject{{u"id"_s, id}, {u"toolType"_s, u"hline"_s},
            {u"points"_s, QJsonArray{QJsonObject{{u"time"_s, u"1000"_s}, {u"price"_s, price}}}}});
    }
    return StubAnswer::json(QJsonDocument(records).toJson());
}

struct StoredDrawings final : ServedClient {
    DrawingStore& open(
        const QString& account = QStringLiteral("one"), const QString& symbol = QStringLiteral("EURUSD"))
    {
        store = std::make_unique<DrawingStore>(api, *chart, symbol, account);
        QObject::connect(store.get(), &DrawingStore::failed, store.get(),
            [this](const QString& message) { failures.append(message); });
        return *store;
    }

    /// What the chart does when a person has placed a line.
    void draw(double price) const
    {
        const Drawing drawing = horizontalLine({}, price);
        chart->setDrawings(chart->drawings() + QList{drawing});
        Q_EMIT chart->drawingCreated(drawing);
    }

    /// What the chart does when a person has deleted an object.
    void deleteAt(qsizetype index) const
    {
        QList<Drawing> drawings = chart->drawings();
        const QString id = drawings.takeAt(index).id;
        chart->setDrawings(drawings);
        if (!id.isEmpty())
            Q_EMIT chart->drawingDeleted(id);
    }

    /// The objects as "id@price", without an id "@price".
    [[nodiscard]] QStringList shown() const
    {
        QStringList texts;
        for (const Drawing& drawing : chart->drawings())
            texts << drawing.id + u'@' + QString::number(drawing.points.first().price);
        return texts;
    }

    QStringList failures;
    std::unique_ptr<ChartWidget> chart = std::make_unique<ChartWidget>();
    std::unique_ptr<DrawingStore> store;
};

} // namespace fixtures
