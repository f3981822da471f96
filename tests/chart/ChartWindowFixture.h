#pragma once

#include "app/base/TerminalSettings.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "net/ApiClient.h"
#include "support/StubHttpServer.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <memory>

/// A chart window before a server that knows no candles and no objects.
namespace fixtures {

struct ServedChart {
    explicit ServedChart(const QString& symbol = QStringLiteral("EURUSD"), int digits = 5)
    {
        TerminalSettings::instance().setServerUrl(server.url());
        server.on("GET", "/api/candles", StubAnswer::json("[]"));
        server.on("GET", "/api/drawings", StubAnswer::json("[]"));
        server.on("GET", "/api/accounts", StubAnswer::json("[]"));
        api = std::make_unique<ApiClient>(TerminalSettings::instance());
        window = std::make_unique<ChartWindow>(*api, symbol, QStringLiteral("15m"), QString(), digits);
        window->resize(500, 360);
    }

    [[nodiscard]] ChartWidget& chart() const { return window->chart(); }

    /// Shows the window as a person sees it.
    void show() const
    {
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    }

    /// A further exchange, after which whatever was answered or sent before has arrived.
    void settle()
    {
        bool answered = false;
        api->get(QStringLiteral("/api/accounts"), window.get(),
            [&answered](const QJsonDocument&, const QString&) { answered = true; });
        QTRY_VERIFY(answered);
    }

    StubHttpServer server;
    std::unique_ptr<ApiClient> api;
    std::unique_ptr<ChartWindow> window;
};

inline QJsonObject quote(const QString& symbol, double bid, double ask)
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
