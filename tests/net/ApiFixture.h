#pragma once

#include "app/base/TerminalSettings.h"
#include "net/ApiClient.h"
#include "net/FinishReply.h"
#include "support/ShortSteps.h"
#include "support/StubHttpServer.h"

#include <QJsonDocument>
#include <QtTest>

#include <optional>

namespace fixtures {

/// A scripted server and a client of it that has a token, both new for each case.
class ApiTest : public QObject {
protected:
    void serve(StubHttpServer::Transport transport = StubHttpServer::Transport::Plain)
    {
        m_api.reset();
        m_server.emplace(transport);
        m_api.emplace(TerminalSettings::instance());
        TerminalSettings::instance().setServerUrl(m_server->url());
        TerminalSettings::instance().setToken(QStringLiteral("token-1234"));
    }
    void end()
    {
        m_api.reset();
        m_server.reset();
    }

    ReplyOutcome change(const QByteArray& verb, const QString& path)
    {
        const QJsonObject body{{QStringLiteral("lotSize"), 1}};
        if (verb == "POST")
            return finish(m_api->post(path, body));
        return finish(verb == "PUT" ? m_api->put(path, body) : m_api->del(path));
    }
    QString readError(const QString& path)
    {
        std::optional<QString> result;
        m_api->get(path, [&](const QJsonDocument& document, const QString& error) {
            result = document.isNull() ? error : QStringLiteral("(a document)");
        });
        return QTest::qWaitFor([&] { return result.has_value(); }, 10000) ? *result
                                                                          : QStringLiteral("(no answer)");
    }

    std::optional<StubHttpServer> m_server;
    std::optional<ApiClient> m_api;
};

} // namespace fixtures
