#pragma once

#include "app/base/TerminalSettings.h"
#include "net/ApiClient.h"
#include "support/ShortSteps.h"
#include "support/StubHttpServer.h"

#include <QJsonDocument>
#include <QNetworkReply>
#include <QtTest>

namespace fixtures {

/// A scripted server and a client that asks it: what whoever asks a server is tested with.
struct ServedClient {
    StubHttpServer server;
    ApiClient api{TerminalSettings::instance()};

    ServedClient() { TerminalSettings::instance().setServerUrl(server.url()); }
    Q_DISABLE_COPY_MOVE(ServedClient)

    /// A further exchange, after which whatever was answered or sent before has arrived.
    void exchange()
    {
        bool answered = false;
        api.get(QStringLiteral("/marker"), &server,
            [&answered](const QJsonDocument&, const QString&) { answered = true; });
        QTRY_VERIFY(answered);
    }
    /// Waits until the server is asked for nothing more: several exchanges, one after the other, pass
    /// without another request. Each takes at least the turns of the loop in which what follows from an
    /// answer or a message already on its way would have been sent.
    void settle()
    {
        constexpr int quietExchanges = 4;
        for (int quiet = 0; quiet < quietExchanges;) {
            const qsizetype before = server.requests().size();
            exchange();
            quiet = server.requests().size() == before + 1 ? quiet + 1 : 0;
        }
    }
    /// Requests so far, but for those of exchange() and settle().
    [[nodiscard]] qsizetype asked() const
    {
        return server.requests().size() - server.count("GET", "/marker");
    }
    /// Gives the request that the server does not answer up, as the time-out does.
    void giveUp()
    {
        QTRY_COMPARE(server.heldCount(), 1);
        api.findChild<QNetworkReply*>()->abort();
    }
    /// Whether the client still waits for an answer.
    [[nodiscard]] bool isWaiting() const { return api.findChild<QNetworkReply*>() != nullptr; }

protected:
    ~ServedClient() = default;
};

} // namespace fixtures
