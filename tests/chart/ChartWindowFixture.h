#pragma once

#include "app/base/UtcTime.h"
#include "chart/ChartFixtures.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "support/Records.h"
#include "support/ServedClient.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <memory>

/// Chart windows before a server, and what it sends them.
namespace fixtures {

/// A server that knows no objects and no candles: asked for those, it says so.
struct ChartServer : ServedClient {
    ChartServer() { server.on("GET", "/api/drawings", StubAnswer::json("[]")); }
};

/// A chart window of a symbol whose history is empty.
struct ServedChart final : ChartServer {
    explicit ServedChart(const QString& symbol = QStringLiteral("EURUSD"), int digits = 5)
    {
        server.on("GET", "/api/candles", StubAnswer::json("[]"));
        window = std::make_unique<ChartWindow>(api, symbol, QStringLiteral("15m"), QString(), digits);
        window->resize(500, 360);
    }

    [[nodiscard]] ChartWidget& chart() const { return window->chart(); }

    /// Shows the window as a person sees it.
    void show() const
    {
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    }

    std::unique_ptr<ChartWindow> window;
};

/// A history of flat quarter-hour candles with these closes, long ago.
inline QJsonArray candleRows(const QList<double>& closes)
{
    QJsonArray rows;
    qint64 time = 1'600'000'200'000;
    for (const double close : closes) {
        rows.append(
            records::candle(utcTime(time).toString(Qt::ISODateWithMs), close, close, close, close, 1));
        time += quarterHour;
    }
    return rows;
}

/// The body of a reply with such a history.
inline QByteArray candleBody(const QJsonArray& rows)
{
    return QJsonDocument(rows).toJson(QJsonDocument::Compact);
}
inline QByteArray candleBody(int count, double close)
{
    return candleBody(candleRows(QList<double>(count, close)));
}

inline QJsonObject quote(const QString& symbol, const QJsonValue& bid, const QJsonValue& ask)
{
    return {{symbol, QJsonObject{{QStringLiteral("bid"), bid}, {QStringLiteral("ask"), ask}}}};
}

/// A press of the mouse as the desktop delivers it, so that everything it sets off happens.
inline void pressAt(QWidget& widget, const QPoint& position, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mousePress(widget.window()->windowHandle(), button, {}, widget.mapTo(widget.window(), position));
}

inline void moveTo(QWidget& widget, const QPoint& position)
{
    QTest::mouseMove(widget.window()->windowHandle(), widget.mapTo(widget.window(), position));
}

inline void releaseAt(QWidget& widget, const QPoint& position, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mouseRelease(widget.window()->windowHandle(), button, {}, widget.mapTo(widget.window(), position));
}

} // namespace fixtures
