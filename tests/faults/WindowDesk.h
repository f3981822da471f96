#pragma once

#include "faults/FaultyLine.h"
#include "faults/Heartbeat.h"
#include "mainwindow/MainWindowFixture.h"
#include "net/ApiClient.h"
#include "net/WsClient.h"
#include "support/LiveObjects.h"

#include <QUrl>

namespace faults {

/// The whole main window behind a faulty line. Needs liveobjects::watch() before it is made.
struct WindowDesk final {
    // Whoever waits for a time-out waits less long than a trader would.
    static constexpr int silenceMs = 300;
    static constexpr int attemptTimeoutMs = 300;
    static constexpr int retrySecondMs = 100;

    MainWindowFixture f;
    StubHttpServer elsewhere; ///< where a redirect would lead
    FaultyLine line{static_cast<quint16>(QUrl(f.server.url()).port())};
    Heartbeat heart{[] {}};

    WindowDesk()
    {
        TerminalSettings::instance().setServerUrl(line.url());
        f.signInAndSettle();
        QTRY_VERIFY(isConnected());
        f.server.clearRequests();
        for (QObject* object : liveobjects::here()) { // no search from the window finds them
            if (auto* api = qobject_cast<ApiClient*>(object))
                api->setLimits({.silence = silenceMs});
            if (auto* client = qobject_cast<WsClient*>(object)) {
                client->setAttemptTimeout(attemptTimeoutMs);
                client->setRetrySecond(retrySecondMs);
            }
        }
        heart.restart();
    }
    Q_DISABLE_COPY_MOVE(WindowDesk)

    [[nodiscard]] bool isConnected() const
    {
        return f.window->findChild<QLabel*>(QStringLiteral("connectionLabel"))
            ->text()
            .contains(QStringLiteral("</span> Connected"));
    }
    [[nodiscard]] QStringList tradeLines() const
    {
        return f.journal().filter(QRegularExpression(QStringLiteral("^Trade: ")));
    }
};

} // namespace faults
