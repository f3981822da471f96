#include "scenes/StubPlatform.h"

#include "pixel/Monotonic.h"
#include "scenes/Waiting.h"

#include <QDateTime>
#include <QTcpSocket>

using namespace Qt::StringLiterals;

namespace {

constexpr int pointsBetweenSymbols = 10'000;

QByteArray candles(int count)
{
    const QDateTime end = QDateTime::currentDateTimeUtc();
    QByteArray text;
    for (int i = 0; i < count; ++i) {
        const double open = 1.1 + (i * 7 % 97) * 0.0001;
        text += (i ? "," : "") + QByteArray("{\"timestamp\":\"")
            + end.addSecs(900LL * (i - count)).toString(Qt::ISODateWithMs).toLatin1() + "\",\"open\":"
            + QByteArray::number(open, 'f', 5) + ",\"high\":" + QByteArray::number(open + 0.0008, 'f', 5)
            + ",\"low\":" + QByteArray::number(open - 0.0007, 'f', 5)
            + ",\"close\":" + QByteArray::number(open + 0.0003, 'f', 5)
            + ",\"volume\":" + QByteArray::number(100 + i % 50) + '}';
    }
    return '[' + text + ']';
}

} // namespace

StubPlatform::StubPlatform(int symbols)
    : m_symbols(symbols)
{
    QByteArray records;
    for (int i = 0; i < symbols; ++i)
        records += (i ? ",{\"name\":\"" : "{\"name\":\"") + symbolName(i).toLatin1() + "\",\"digits\":5}";
    m_hello = QString::fromLatin1(
        "{\"type\":\"hello\",\"symbols\":[" + records + "],\"prices\":" + prices(0) + '}');
    m_http.on("GET", "/api/settings/public", StubAnswer::json("{\"settings\":{}}"));
    m_http.on("POST", "/api/auth/login",
        StubAnswer::json("{\"token\":\"secret-token-123\",\"email\":\"trader@example.test\"}"));
    m_http.on("GET", "/api/accounts",
        StubAnswer::json("[{\"id\":\"a1\",\"type\":\"DEMO\",\"status\":\"ACTIVE\",\"balance\":\"1000\"}]"));
    for (const char* list : {"/api/trades/open", "/api/trades/pending", "/api/trades/history"})
        m_http.on("GET", list, StubAnswer::json("[]"));
    m_http.on("GET", "/api/candles", StubAnswer::json(candles(1000)));
    m_http.on("POST", "/api/trades/place", StubAnswer::json("{}"));
    QObject::connect(&m_http, &StubHttpServer::requestReceived, &m_http,
        [this](const StubRequest& request) { takeRequest(request); });
    m_http.setUpgradeHandler([this](QTcpSocket* socket) { m_feeds.handleConnection(socket); });
    QObject::connect(&m_feeds, &QWebSocketServer::newConnection, &m_feeds, [this] { takeClient(); });
}

StubPlatform::~StubPlatform() = default;

QString StubPlatform::symbolName(int index)
{
    return u"SYM%1"_s.arg(index, 2, 10, QLatin1Char('0'));
}

QByteArray StubPlatform::quote(int index, int points)
{
    const double bid = 1.1 + points * 0.00001;
    return '"' + symbolName(index).toLatin1() + "\":{\"bid\":" + QByteArray::number(bid, 'f', 5)
        + ",\"ask\":" + QByteArray::number(bid + 0.0001, 'f', 5) + '}';
}

QString StubPlatform::url() const
{
    return m_http.url();
}

QByteArray StubPlatform::prices(int phase) const
{
    QByteArray text;
    for (int i = 0; i < m_symbols; ++i)
        text += (i ? "," : "") + quote(i, i * pointsBetweenSymbols + phase * (i + 3) % 41);
    return '{' + text + '}';
}

void StubPlatform::takeRequest(const StubRequest& request)
{
    if (onRequest)
        onRequest(request);
    if (request.target == "/api/auth/login")
        acceptedAt = monotonicNs();
    QMetaObject::invokeMethod(
        &m_http, [this] { m_http.clearRequests(); }, Qt::QueuedConnection);
}

void StubPlatform::takeClient()
{
    client.reset(m_feeds.nextPendingConnection());
    QObject::connect(client.get(), &QWebSocket::pong, &m_feeds, [this] { ++m_pongs; });
    QObject::connect(client.get(), &QWebSocket::textMessageReceived, &m_feeds, [this] {
        if (onPing)
            onPing();
        client->sendTextMessage(u"{\"type\":\"pong\"}"_s);
    });
    client->sendTextMessage(m_hello);
    ++connections;
}

void StubPlatform::sendSnapshots(int count)
{
    constexpr int stride = 200;
    for (int sent = 0; sent < count;) {
        for (int i = 0; i < stride && sent < count; ++i, ++sent)
            client->sendTextMessage(
                QString::fromLatin1("{\"type\":\"price_update\",\"data\":" + prices(++m_phase) + '}'));
        const int before = m_pongs;
        client->ping();
        waitUntil([&] { return m_pongs > before; }, u"the snapshots to be read"_s);
    }
}
