#include "net/WsClient.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/base/TerminalSettings.h"
#include "net/SocketError.h"
#include "net/UrlParts.h"
#include "net/records/FeedMessage.h"

#include <QJsonDocument>
#include <QUrl>
#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr int pingIntervalMs = 15000;
constexpr int attemptTimeoutMs = 10000;
constexpr qint32 firstRetryDelayMs = 1000;
constexpr qint32 longestRetryDelayMs = 30000;

// Qt would take 2 GiB. A larger message makes the socket close itself.
constexpr quint64 largestMessage = 32ULL * 1024 * 1024;

QString feedAddress(const QString& serverUrl)
{
    QString address = serverUrl;
    if (address.startsWith("https://"_L1))
        address.replace(0, 8, "wss://"_L1);
    else if (address.startsWith("http://"_L1))
        address.replace(0, 7, "ws://"_L1);
    return address + "/ws/terminal"_L1;
}

QString readyText(qsizetype symbols)
{
    return WsClient::tr("Feed ready — %1 symbols", nullptr, pluralCount(symbols)).arg(symbols);
}

} // namespace

WsClient::WsClient(const TerminalSettings& settings, QObject* parent)
    : QObject(parent)
    , m_settings(settings)
    , m_socket(QString(), QWebSocketProtocol::Version13, this)
    , m_intake(m_socket, this)
    , m_backlog(this)
    , m_pingTimer(this)
    , m_retryDelayMs(firstRetryDelayMs)
    , m_retryTimer(this)
    , m_attemptTimer(this)
{
    m_socket.setMaxAllowedIncomingFrameSize(largestMessage);
    m_socket.setMaxAllowedIncomingMessageSize(largestMessage);
    m_pingTimer.setObjectName("pingTimer"_L1);
    m_pingTimer.setInterval(pingIntervalMs);
    m_retryTimer.setObjectName("retryTimer"_L1);
    m_retryTimer.setSingleShot(true);
    m_attemptTimer.setObjectName("attemptTimer"_L1);
    m_attemptTimer.setSingleShot(true);
    m_attemptTimer.setInterval(attemptTimeoutMs);

    connect(&m_socket, &QWebSocket::connected, this, &WsClient::onConnected);
    connect(&m_socket, &QWebSocket::disconnected, this, &WsClient::finishAttempt);
    connect(&m_socket, &QWebSocket::textMessageReceived, &m_backlog, &FeedBacklog::add);
    connect(&m_backlog, &FeedBacklog::due, this, &WsClient::onTextMessage);
    connect(&m_backlog, &FeedBacklog::filled, &m_intake, &SocketIntake::rest);
    connect(&m_backlog, &FeedBacklog::eased, &m_intake, &SocketIntake::goOn);
    connect(&m_backlog, &FeedBacklog::drained, this, [this] {
        if (m_endUntold)
            finishAttempt();
    });
    connect(&m_socket, socketError, this, &WsClient::reportError);
    connect(&m_pingTimer, &QTimer::timeout, this, &WsClient::sendPing);
    connect(&m_retryTimer, &QTimer::timeout, this, &WsClient::reopen);
    connect(&m_attemptTimer, &QTimer::timeout, this, &WsClient::giveUpAttempt);
}

WsClient::~WsClient()
{
    // The socket closes itself in its destructor, when the other members are gone already.
    m_socket.disconnect(this);
}

void WsClient::setAttemptTimeout(int milliseconds)
{
    m_attemptTimer.setInterval(milliseconds);
}

void WsClient::setRetrySecond(int milliseconds)
{
    m_retrySecondMs = milliseconds;
}

void WsClient::start()
{
    m_wanted = true;
    m_retryDelayMs = firstRetryDelayMs;
    open();
}

void WsClient::open()
{
    // What is left of an earlier attempt ends here without a signal: this attempt is its retry.
    m_attemptRunning = false;
    m_retryTimer.stop();
    m_pingTimer.stop();
    m_socket.abort();
    m_backlog.clear();
    m_endUntold = false;

    const QString address = feedAddress(m_settings.serverUrl());
    log(tr("Connecting to %1...").arg(shownSentence(address)));
    QUrl url(address);
    // Encoded by hand, since a query item would leave "+" as it is and servers read that as a blank.
    url.setQuery("token="_L1 + encodeQueryValue(m_settings.token()));
    m_lastError.reset();
    m_attemptRunning = true;
    m_attemptTimer.start();
    m_socket.open(url);
    m_intake.begin();
}

void WsClient::reopen()
{
    if (m_wanted && m_socket.state() != QAbstractSocket::ConnectedState)
        open();
}

void WsClient::finishAttempt()
{
    if (!m_attemptRunning)
        return;
    m_endUntold = !m_backlog.isEmpty();
    if (m_endUntold)
        return;
    m_attemptRunning = false;
    m_attemptTimer.stop();
    // A refused port and an unknown name are signalled as a disconnect first and as an error after it.
    if (m_socket.error() != QAbstractSocket::UnknownSocketError)
        reportError();
    onDisconnected();
}

void WsClient::giveUpAttempt()
{
    // A server that keeps the connection but never completes the handshake causes no signal.
    m_socket.abort();
    finishAttempt();
}

void WsClient::reportError()
{
    const QString text = shownReason(m_socket.errorString());
    if (text == m_lastError)
        return;
    m_lastError = text;
    log(tr("Feed error: %1").arg(text));
}

void WsClient::log(const QString& message)
{
    Q_EMIT logMessage(tr("Network"), message);
}

void WsClient::onConnected()
{
    m_attemptTimer.stop();
    m_retryDelayMs = firstRetryDelayMs;
    m_pingPending = false;
    m_pingTimer.start();
    log(tr("Feed connected"));
    Q_EMIT connected();
}

void WsClient::onDisconnected()
{
    m_pingTimer.stop();
    if (!m_wanted)
        return;
    const qint32 delayMs = m_retryDelayMs;
    m_retryDelayMs = std::min(2 * delayMs, longestRetryDelayMs);
    const int seconds = delayMs / 1000;
    // Before the signals: a receiver that calls start() must not be followed by a second attempt.
    m_retryTimer.start(seconds * m_retrySecondMs);
    log(tr("Feed disconnected — retrying in %1s").arg(seconds));
    Q_EMIT disconnected(seconds);
}

void WsClient::onTextMessage(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    m_rxBytes += static_cast<quint64>(utf8.size());
    Q_EMIT trafficChanged(m_rxBytes, m_txBytes);

    const QJsonObject message = QJsonDocument::fromJson(utf8).object();
    switch (feed::kind(message)) {
    case feed::Kind::Prices:
        Q_EMIT pricesUpdated(feed::prices(message));
        break;
    case feed::Kind::Trades:
        Q_EMIT tradesUpdated(feed::trades(message));
        break;
    case feed::Kind::Hello:
        log(readyText(feed::symbols(message).size()));
        Q_EMIT helloReceived(message);
        break;
    case feed::Kind::OrdersChanged:
        Q_EMIT ordersChanged(message);
        break;
    case feed::Kind::AccountUpdate:
        Q_EMIT accountUpdated(message);
        break;
    case feed::Kind::Pong:
        takePong();
        break;
    case feed::Kind::Unknown:
        break;
    }
}

void WsClient::takePong()
{
    m_pingPending = false;
    const qint64 elapsed = m_pingClock.isValid() ? m_pingClock.elapsed() : 0;
    Q_EMIT latencyChanged(static_cast<int>(std::min<qint64>(elapsed, std::numeric_limits<int>::max())));
}

void WsClient::sendPing()
{
    if (m_socket.state() != QAbstractSocket::ConnectedState || m_pingPending)
        return;
    m_pingPending = true;
    m_pingClock.start();
    m_socket.sendTextMessage(feed::ping);
    m_txBytes += static_cast<quint64>(feed::ping.size());
    Q_EMIT trafficChanged(m_rxBytes, m_txBytes);
}
