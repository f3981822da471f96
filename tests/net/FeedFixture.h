#pragma once

#include "app/base/TerminalSettings.h"
#include "net/WsClient.h"
#include "support/ShortSteps.h"
#include "support/StubFeedServer.h"

#include <QtTest>

#include <optional>

namespace fixtures {

/// A feed and a client of it, both new for each case, with all that the client tells. A second of its delays
/// lasts a millisecond.
class FeedTest : public QObject {
protected:
    void serve()
    {
        m_feed.emplace();
        TerminalSettings::instance().setServerUrl(m_feed->url());
        TerminalSettings::instance().setToken(QStringLiteral("token-1234"));
        makeClient();
    }
    void makeClient()
    {
        m_log.clear();
        m_retries.clear();
        m_client.emplace(TerminalSettings::instance());
        m_client->setRetrySecond(1);
        connect(
            &*m_client, &WsClient::logMessage, this, [this](const QString& source, const QString& message) {
                QCOMPARE(source, QStringLiteral("Network"));
                m_log.append(message);
            });
        connect(
            &*m_client, &WsClient::disconnected, this, [this](int seconds) { m_retries.append(seconds); });
    }
    void end()
    {
        m_client.reset();
        m_feed.reset();
    }

    std::optional<StubFeedServer> m_feed;
    std::optional<WsClient> m_client;
    QStringList m_log;
    QList<int> m_retries;
};

} // namespace fixtures
