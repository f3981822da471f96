#include "scenes/StubPlatform.h"

#include "chart/series/Timeframe.h"
#include "pixel/Monotonic.h"
#include "scenes/Waiting.h"

#include <QDateTime>
#include <QTcpSocket>
#include <QUrl>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

constexpr int historyLength = 1000;
constexpr double point = 0.00001;
constexpr double lowest = 1.1;
constexpr double spread = 0.0001;

QByteArray price(double value)
{
    return QByteArray::number(value, 'f', StubPlatform::digits);
}

/// Candles of that length, the newest of which began at `newestMs`. It has traded less than any other, so
/// that the volume's scale does not change while prices come.
QByteArray candles(double base, qint64 lengthMs, qint64 newestMs)
{
    constexpr int ordinaryVolume = 100'000;
    constexpr int newestVolume = 1'000;
    QByteArray text;
    for (int i = 0; i < historyLength; ++i) {
        const int ago = historyLength - 1 - i;
        const double open = base + (i * 7 % 97) * 0.0001;
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(newestMs - lengthMs * ago, Qt::UTC);
        text += (i ? "," : "") + QByteArray("{\"timestamp\":\"") + time.toString(Qt::ISODateWithMs).toLatin1()
            + "\",\"open\":" + price(open) + ",\"high\":" + price(open + 0.0008)
            + ",\"low\":" + price(open - 0.0007) + ",\"close\":" + price(open + 0.0003) + ",\"volume\":"
            + QByteArray::number(ago > 0 ? ordinaryVolume + i % 50 * 100 : newestVolume) + '}';
    }
    return '[' + text + ']';
}

} // namespace

StubPlatform::StubPlatform(int symbols, const QByteArray& helloPrices)
    : m_symbols(symbols)
{
    QByteArray records;
    for (int i = 0; i < symbols; ++i)
        records += (i ? ",{\"name\":\"" : "{\"name\":\"") + symbolName(i).toLatin1()
            + "\",\"digits\":" + QByteArray::number(digits) + '}';
    m_hello = QString::fromLatin1("{\"type\":\"hello\",\"symbols\":[" + records
        + "],\"prices\":" + (helloPrices.isEmpty() ? prices(0) : helloPrices) + '}');
    m_http.on("GET", "/api/settings/public", StubAnswer::json("{\"settings\":{}}"));
    m_http.on("POST", "/api/auth/login",
        StubAnswer::json("{\"token\":\"secret-token-123\",\"email\":\"trader@example.test\"}"));
    m_http.on("GET", "/api/accounts",
        StubAnswer::json("[{\"id\":\"a1\",\"type\":\"DEMO\",\"status\":\"ACTIVE\",\"balance\":\"1000\"}]"));
    for (const char* list : {"/api/trades/open", "/api/trades/pending", "/api/trades/history"})
        m_http.on("GET", list, StubAnswer::json("[]"));
    m_http.on("GET", "/api/candles", StubAnswer::held());
    m_http.on("POST", "/api/trades/place", StubAnswer::json("{}"));
    QObject::connect(&m_http, &StubHttpServer::requestReceived, &m_http,
        [this](const StubRequest& request) { takeRequest(request); });
    m_http.setUpgradeHandler([this](QTcpSocket* socket) {
        // As platforms do: the end of a message would wait for the client's word on its beginning, up to 40
        // ms.
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        m_feeds.handleConnection(socket);
    });
    QObject::connect(&m_feeds, &QWebSocketServer::newConnection, &m_feeds, [this] { takeClient(); });
}

StubPlatform::~StubPlatform() = default;

QString StubPlatform::symbolName(int index)
{
    return u"SYM%1"_s.arg(index, 2, 10, QLatin1Char('0'));
}

QByteArray StubPlatform::quote(int index, int points)
{
    const double bid = lowest + points * point;
    return '"' + symbolName(index).toLatin1() + "\":{\"bid\":" + price(bid)
        + ",\"ask\":" + price(bid + spread) + '}';
}

double StubPlatform::middle(int points)
{
    return lowest + points * point + spread / 2.0;
}

int StubPlatform::lowestPoints(int index)
{
    constexpr int pointsBetweenSymbols = 10'000;
    return index * pointsBetweenSymbols;
}

QString StubPlatform::url() const
{
    return m_http.url();
}

QByteArray StubPlatform::prices(int phase) const
{
    QByteArray text;
    for (int i = 0; i < m_symbols; ++i)
        text += (i ? "," : "") + quote(i, lowestPoints(i) + phase * (i + 3) % 41);
    return '{' + text + '}';
}

QByteArray StubPlatform::history(const QByteArray& target)
{
    const QUrlQuery query(QUrl::fromEncoded(target));
    const qint64 lengthMs = timeframeMs(query.queryItemValue(u"timeframe"_s, QUrl::FullyDecoded));
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    // The newest one is running: a price that comes now belongs to it.
    const qint64 newestMs = now - now % lengthMs;
    History& history = m_histories[target];
    if (history.newestMs != newestMs) {
        const int index = query.queryItemValue(u"symbol"_s, QUrl::FullyDecoded).mid(3).toInt();
        history = {newestMs, candles(lowest + lowestPoints(index) * point, lengthMs, newestMs)};
    }
    return history.text;
}

void StubPlatform::takeRequest(const StubRequest& request)
{
    if (onRequest)
        onRequest(request);
    if (request.target == "/api/auth/login")
        acceptedAt = monotonicNs();
    if (request.path() == "/api/candles")
        m_http.release(StubAnswer::json(history(request.target)), request.target);
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
