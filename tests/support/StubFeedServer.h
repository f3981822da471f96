#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QPointer>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QWebSocket>
#include <QWebSocketServer>

class StubHttpServer;

/// A feed server on a free loopback port, or on the port of a StubHttpServer, that can also
/// misbehave. For tests in the same thread.
///
///     StubHttpServer http;                 // one port for both, as the real platform has
///     StubFeedServer feed(http);
///     TerminalSettings::instance().setServerUrl(http.url());
///     feed.setGreeting(R"({"type":"hello","symbols":[...],"prices":{...}})"); // sent to each client
///     ...start the client...
///     QTRY_COMPARE(feed.clientCount(), 1);
///     feed.send(R"({"type":"price_update","data":{"EURUSD":{"bid":1.1,"ask":1.2}}})");
///     feed.cut();                          // the client sees a lost connection
class StubFeedServer final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(StubFeedServer)

public:
    /// What the next attempts to connect meet.
    enum class Mode {
        Serve,               ///< a working feed
        RefuseAndClose,      ///< the handshake is answered 401 and the connection closed
        RefuseAndKeepOpen,   ///< the handshake is answered 401 and the connection kept open
        RedirectAndKeepOpen, ///< 302 to another address, kept open
        GarbageAndKeepOpen,  ///< bytes that are not HTTP, kept open
        Silent,              ///< accepted, never answered
        HalfHeader,          ///< the first half of a good answer, then nothing
        TokenInReason,       ///< like RefuseAndClose, with the request's token in the reason phrase
        CloseAtOnce,         ///< accepted and closed without an answer
    };

    explicit StubFeedServer(QObject* parent = nullptr);
    /// Serves "/ws/..." on the port of the HTTP stub, which must outlive this server.
    explicit StubFeedServer(StubHttpServer& http, QObject* parent = nullptr);
    ~StubFeedServer() override;

    /// "http://127.0.0.1:PORT" of its own port; not for one that shares a port.
    [[nodiscard]] QString url() const;

    void setMode(Mode mode) { m_mode = mode; }
    /// A message that each client gets as soon as it is connected; none by default.
    void setGreeting(const QByteArray& text) { m_greeting = text; }
    void setGreeting(const QJsonObject& message);

    /// Connections opened so far, whatever became of them.
    [[nodiscard]] int attempts() const { return m_attempts; }
    /// Clients with a working feed now.
    [[nodiscard]] int clientCount() const { return static_cast<int>(m_clients.size()); }
    /// Connections kept open without a feed, as the misbehaving modes leave them.
    [[nodiscard]] int halfOpenCount() const;
    /// Targets (path and query) of the handshakes read so far, exactly as on the wire.
    [[nodiscard]] const QList<QByteArray>& targets() const { return m_targets; }
    /// The whole head of the last handshake.
    [[nodiscard]] const QByteArray& lastHead() const { return m_lastHead; }
    /// Text messages from clients, in order.
    [[nodiscard]] const QStringList& received() const { return m_received; }

    /// Sends a text message to every client.
    void send(const QByteArray& text);
    void send(const QJsonObject& message);
    /// Hands as much of what was sent to the system at once as that takes; otherwise it goes bit by bit.
    void flush();
    /// Resets every connection, the half-open ones included.
    void cut();
    /// Closes every client's connection in the orderly way.
    void closeAll();
    /// Stops listening on its own port; further attempts are refused.
    void shutDown();

Q_SIGNALS:
    void attempted();
    void clientConnected();
    void messageReceived(const QString& text);

private:
    void accept(QTcpSocket* socket);
    void peekHandshake(QTcpSocket* socket);
    void answerHandshake(QTcpSocket* socket);
    void takeClients();

    QTcpServer m_listener;
    QWebSocketServer m_webSockets;
    Mode m_mode = Mode::Serve;
    QByteArray m_greeting;
    int m_attempts = 0;
    QList<QByteArray> m_targets;
    QByteArray m_lastHead;
    QStringList m_received;
    QList<QWebSocket*> m_clients;
    QList<QPointer<QTcpSocket>> m_halfOpen;
};
