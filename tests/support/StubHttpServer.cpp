#include "support/StubHttpServer.h"

#include "support/TestCertificates.h"

#include <QJsonDocument>
#include <QSslServer>
#include <QTcpSocket>

using namespace Qt::StringLiterals;

namespace {

QByteArray ruleKey(const QByteArray& method, const QByteArray& target)
{
    return method + ' ' + target;
}

QByteArray withoutQuery(const QByteArray& target)
{
    return target.left(target.indexOf('?') < 0 ? target.size() : target.indexOf('?'));
}

bool matches(const QByteArray& target, const QByteArray& wanted)
{
    return target == wanted || withoutQuery(target) == wanted;
}

QByteArray replyBytes(const StubAnswer& answer)
{
    QByteArray bytes = "HTTP/1.1 " + QByteArray::number(answer.status) + " Stub\r\n";
    for (const auto& [name, value] : answer.headers)
        bytes += name + ": " + value + "\r\n";
    bytes += "Content-Length: " + QByteArray::number(answer.body.size()) + "\r\n\r\n";
    return answer.how == StubAnswer::How::Drip ? bytes : bytes + answer.body;
}

StubAnswer ofKind(StubAnswer::How how, const QByteArray& body = {})
{
    StubAnswer answer;
    answer.how = how;
    answer.body = body;
    return answer;
}

StubAnswer typed(const QByteArray& type, const QByteArray& body, int status)
{
    StubAnswer answer;
    answer.status = status;
    answer.body = body;
    answer.headers = {{"Content-Type", type}};
    return answer;
}

} // namespace

StubAnswer StubAnswer::json(const QByteArray& body, int status)
{
    return typed("application/json", body, status);
}

StubAnswer StubAnswer::json(const QJsonObject& body)
{
    return json(QJsonDocument(body).toJson(QJsonDocument::Compact));
}

StubAnswer StubAnswer::list(const QJsonArray& records)
{
    return json(QJsonDocument(records).toJson(QJsonDocument::Compact));
}

StubAnswer StubAnswer::message(const QString& text, int status)
{
    return json(QJsonDocument(QJsonObject{{u"message"_s, text}}).toJson(QJsonDocument::Compact), status);
}

StubAnswer StubAnswer::html(const QByteArray& body, int status)
{
    return typed("text/html", body, status);
}

StubAnswer StubAnswer::redirect(const QString& location, int status)
{
    return html("<p>moved</p>", status).with("Location", location.toUtf8());
}

StubAnswer StubAnswer::with(const QByteArray& name, const QByteArray& value) const
{
    StubAnswer answer = *this;
    answer.headers.append(qMakePair(name, value));
    return answer;
}

StubAnswer StubAnswer::raw(const QByteArray& bytes)
{
    return ofKind(How::Raw, bytes);
}

StubAnswer StubAnswer::held()
{
    return ofKind(How::Hold);
}

StubAnswer StubAnswer::closed()
{
    return ofKind(How::Close);
}

StubAnswer StubAnswer::dripping(const QByteArray& body)
{
    return ofKind(How::Drip, body);
}

QByteArray StubRequest::path() const
{
    return withoutQuery(target);
}

QByteArray StubRequest::header(const QByteArray& name) const
{
    for (const QByteArray& line : head.split('\n')) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.first(colon).compare(name, Qt::CaseInsensitive) == 0)
            return line.mid(colon + 1).trimmed();
    }
    return {};
}

bool StubRequest::hasHeader(const QByteArray& name) const
{
    return head.toLower().contains("\r\n" + name.toLower() + ':');
}

QJsonObject StubRequest::json() const
{
    return QJsonDocument::fromJson(body).object();
}

StubHttpServer::StubHttpServer(QObject* parent)
    : StubHttpServer(Transport::Plain, parent)
{
}

StubHttpServer::StubHttpServer(Transport transport, QObject* parent)
    : QObject(parent)
    , m_transport(transport)
    , m_server(transport == Transport::Tls ? std::make_unique<QSslServer>() : std::make_unique<QTcpServer>())
{
    if (auto* const tls = qobject_cast<QSslServer*>(m_server.get()))
        tls->setSslConfiguration(testServerTls());
    // Pending is a connection that can be used: with TLS, one whose handshake is through.
    connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, this, &StubHttpServer::takeConnections);
    if (!m_server->listen(QHostAddress::LocalHost))
        qFatal("The stub server found no free port");
}

StubHttpServer::~StubHttpServer()
{
    for (QTcpSocket* socket : m_buffers.keys())
        socket->disconnect(this);
}

QString StubHttpServer::url() const
{
    const QLatin1StringView scheme = m_transport == Transport::Tls ? "https"_L1 : "http"_L1;
    return u"%1://127.0.0.1:%2"_s.arg(scheme, QString::number(m_server->serverPort()));
}

void StubHttpServer::on(const QByteArray& method, const QByteArray& target, const StubAnswer& answer)
{
    m_rules.insert(ruleKey(method, target), answer);
}

void StubHttpServer::once(const QByteArray& method, const QByteArray& target, const StubAnswer& answer)
{
    m_onceRules[ruleKey(method, target)].append(answer);
}

int StubHttpServer::count(const QByteArray& method, const QByteArray& target) const
{
    return static_cast<int>(std::count_if(m_requests.begin(), m_requests.end(),
        [&](const StubRequest& r) { return r.method == method && matches(r.target, target); }));
}

StubRequest StubHttpServer::last(const QByteArray& method, const QByteArray& target) const
{
    for (auto request = m_requests.crbegin(); request != m_requests.crend(); ++request) {
        if (request->method == method && matches(request->target, target))
            return *request;
    }
    return {};
}

int StubHttpServer::heldCount() const
{
    return static_cast<int>(std::count_if(
        m_held.begin(), m_held.end(), [](const Waiting& waiting) { return !waiting.socket.isNull(); }));
}

bool StubHttpServer::release(const StubAnswer& released, const QByteArray& target)
{
    for (qsizetype i = 0; i < m_held.size(); ++i) {
        if (m_held[i].socket.isNull() || (!target.isEmpty() && !matches(m_held[i].target, target)))
            continue;
        const Waiting waiting = m_held.takeAt(i);
        answer(waiting.socket, waiting.target, released);
        return true;
    }
    return false;
}

void StubHttpServer::drip()
{
    for (Dripping& dripping : m_dripping) {
        if (dripping.socket.isNull() || dripping.rest.isEmpty())
            continue;
        dripping.socket->write(dripping.rest.first(1));
        dripping.rest.remove(0, 1);
    }
}

void StubHttpServer::cutAll()
{
    for (QTcpSocket* socket : m_buffers.keys())
        socket->abort();
}

void StubHttpServer::shutDown()
{
    m_server->close();
}

void StubHttpServer::setUpgradeHandler(std::function<void(QTcpSocket*)> handler)
{
    m_upgradeHandler = std::move(handler);
}

void StubHttpServer::takeConnections()
{
    while (QTcpSocket* socket = m_server->nextPendingConnection()) {
        m_buffers.insert(socket, {});
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            m_buffers.remove(socket);
            socket->deleteLater();
        });
        if (socket->bytesAvailable() > 0)
            read(socket);
    }
}

void StubHttpServer::read(QTcpSocket* socket)
{
    constexpr QByteArrayView upgradeStart = "GET /ws/";
    QByteArray& buffer = m_buffers[socket];
    if (m_upgradeHandler && buffer.isEmpty() && socket->peek(upgradeStart.size()) == upgradeStart) {
        socket->disconnect(this);
        m_buffers.remove(socket);
        m_upgradeHandler(socket);
        return;
    }
    buffer += socket->readAll();
    while (m_buffers.contains(socket)) {
        const qsizetype headEnd = m_buffers[socket].indexOf("\r\n\r\n");
        if (headEnd < 0)
            return;
        StubRequest request;
        request.head = m_buffers[socket].first(headEnd + 2);
        const QList<QByteArray> words = request.head.first(request.head.indexOf("\r\n")).split(' ');
        request.method = words.value(0);
        request.target = words.value(1);
        const qsizetype length = request.header("Content-Length").toLongLong();
        if (m_buffers[socket].size() < headEnd + 4 + length)
            return;
        request.body = m_buffers[socket].mid(headEnd + 4, length);
        m_buffers[socket].remove(0, headEnd + 4 + length);
        handle(socket, request);
    }
}

void StubHttpServer::handle(QTcpSocket* socket, const StubRequest& request)
{
    m_requests.append(request);
    answer(socket, request.target, nextAnswer(request));
    Q_EMIT requestReceived(request);
}

StubAnswer StubHttpServer::nextAnswer(const StubRequest& request)
{
    for (const QByteArray& target : {request.target, request.path()}) {
        const QByteArray key = ruleKey(request.method, target);
        if (const auto once = m_onceRules.find(key); once != m_onceRules.end() && !once->isEmpty())
            return once->takeFirst();
        if (const auto rule = m_rules.constFind(key); rule != m_rules.constEnd())
            return *rule;
    }
    return StubAnswer::message(u"The stub has no such path"_s, 404);
}

void StubHttpServer::answer(QTcpSocket* socket, const QByteArray& target, const StubAnswer& answer)
{
    switch (answer.how) {
    case StubAnswer::How::Hold:
        m_held.append({socket, target});
        return;
    case StubAnswer::How::Close:
        socket->disconnectFromHost();
        return;
    case StubAnswer::How::Raw:
        socket->write(answer.body);
        socket->disconnectFromHost();
        return;
    case StubAnswer::How::Drip:
        m_dripping.append({socket, answer.body});
        [[fallthrough]];
    case StubAnswer::How::Reply:
        socket->write(replyBytes(answer));
        return;
    }
}
