#pragma once

#include <QByteArray>
#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QPair>
#include <QPointer>
#include <QTcpServer>
#include <functional>
#include <memory>

class QTcpSocket;

/// What the stub does with one request.
struct StubAnswer final {
    enum class How {
        Reply, ///< a complete HTTP reply; the connection stays open
        Raw,   ///< the body's bytes as they are, then the connection closes
        Hold,  ///< nothing, until StubHttpServer::release()
        Close, ///< the connection closes after the whole request was read
        Drip,  ///< a reply head, then the body one byte at each StubHttpServer::drip()
    };
    How how = How::Reply;
    int status = 200;
    QByteArray body;
    QList<QPair<QByteArray, QByteArray>> headers;

    [[nodiscard]] static StubAnswer json(const QByteArray& body, int status = 200);
    [[nodiscard]] static StubAnswer json(const QJsonObject& body);
    /// A reply that is a list of such records.
    [[nodiscard]] static StubAnswer list(const QJsonArray& records);
    [[nodiscard]] static StubAnswer message(const QString& text, int status);
    [[nodiscard]] static StubAnswer html(const QByteArray& body, int status);
    [[nodiscard]] static StubAnswer redirect(const QString& location, int status = 302);
    [[nodiscard]] static StubAnswer raw(const QByteArray& bytes);
    [[nodiscard]] static StubAnswer held();
    [[nodiscard]] static StubAnswer closed();
    [[nodiscard]] static StubAnswer dripping(const QByteArray& body);

    /// The same answer with one more header.
    [[nodiscard]] StubAnswer with(const QByteArray& name, const QByteArray& value) const;
};

/// One request as it arrived.
struct StubRequest final {
    QByteArray method;
    QByteArray target; ///< path and query exactly as on the wire
    QByteArray head;   ///< request line and headers, unparsed
    QByteArray body;

    [[nodiscard]] QByteArray path() const;                         ///< target without the query
    [[nodiscard]] QByteArray header(const QByteArray& name) const; ///< empty when absent
    [[nodiscard]] bool hasHeader(const QByteArray& name) const;
    [[nodiscard]] QJsonObject json() const;
};

/// A scripted HTTP server on a free loopback port, for tests in the same thread.
///
///     StubHttpServer server;
///     TerminalSettings::instance().setServerUrl(server.url());
///     server.on("GET", "/api/accounts", StubAnswer::json("[]"));
///     server.once("POST", "/api/trades/place", StubAnswer::message(u"No money"_s, 400));
///     ...act...
///     QTRY_COMPARE(server.count("POST", "/api/trades/place"), 1);
///
/// A rule names a path, or a path with its query for just that target. Answers given with once()
/// are used up first, in order; then the one given with on(); else 404 with a "message".
/// Late answers: script StubAnswer::held(), then release() by hand.
/// One port for REST and feed: construct a StubFeedServer with this server.
/// With Transport::Tls it speaks https, and wss to that feed; see TestCertificates.h for the trust.
class StubHttpServer final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(StubHttpServer)

public:
    enum class Transport {
        Plain,
        Tls,
    };

    explicit StubHttpServer(QObject* parent = nullptr);
    explicit StubHttpServer(Transport transport, QObject* parent = nullptr);
    ~StubHttpServer() override;

    /// "http://127.0.0.1:PORT", or the same with https
    [[nodiscard]] QString url() const;

    void on(const QByteArray& method, const QByteArray& target, const StubAnswer& answer);
    void once(const QByteArray& method, const QByteArray& target, const StubAnswer& answer);

    [[nodiscard]] const QList<StubRequest>& requests() const { return m_requests; }
    /// Requests for a path, whatever their query, or for a target with its query.
    [[nodiscard]] int count(const QByteArray& method, const QByteArray& target) const;
    /// The last such request; one with empty fields when there is none.
    [[nodiscard]] StubRequest last(const QByteArray& method, const QByteArray& target) const;
    void clearRequests() { m_requests.clear(); }

    /// Connections open now.
    [[nodiscard]] int connectionCount() const { return static_cast<int>(m_buffers.size()); }
    /// Requests that wait for release(). Those whose client has gone no longer count.
    [[nodiscard]] int heldCount() const;
    /// Answers the oldest held request, or the oldest for this path or target when one is named.
    /// False when there is none.
    bool release(const StubAnswer& answer, const QByteArray& target = {});
    /// Sends one more byte of each dripping body.
    void drip();
    /// Resets every connection, whatever it is doing.
    void cutAll();
    /// Stops listening; new connections are refused from now on.
    void shutDown();

    /// Connections whose request starts with "GET /ws/" go here instead, their bytes unread.
    void setUpgradeHandler(std::function<void(QTcpSocket*)> handler);

Q_SIGNALS:
    void requestReceived(const StubRequest& request);

private:
    struct Waiting {
        QPointer<QTcpSocket> socket;
        QByteArray target;
    };
    struct Dripping {
        QPointer<QTcpSocket> socket;
        QByteArray rest;
    };
    void takeConnections();
    void read(QTcpSocket* socket);
    void handle(QTcpSocket* socket, const StubRequest& request);
    void answer(QTcpSocket* socket, const QByteArray& target, const StubAnswer& answer);
    [[nodiscard]] StubAnswer nextAnswer(const StubRequest& request);

    const Transport m_transport;
    const std::unique_ptr<QTcpServer> m_server;
    QHash<QByteArray, StubAnswer> m_rules;
    QHash<QByteArray, QList<StubAnswer>> m_onceRules;
    QHash<QTcpSocket*, QByteArray> m_buffers;
    QList<StubRequest> m_requests;
    QList<Waiting> m_held;
    QList<Dripping> m_dripping;
    std::function<void(QTcpSocket*)> m_upgradeHandler;
};
