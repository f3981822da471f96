#include "support/StubFeedServer.h"

#include "support/StubHttpServer.h"

#include <QJsonDocument>
#include <QTcpSocket>

using namespace Qt::StringLiterals;

StubFeedServer::StubFeedServer(QObject* parent)
    : QObject(parent)
    , m_webSockets(u"stub"_s, QWebSocketServer::NonSecureMode)
{
    connect(&m_webSockets, &QWebSocketServer::newConnection, this, &StubFeedServer::takeClients);
    connect(&m_listener, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_listener.nextPendingConnection())
            accept(socket);
    });
    if (!m_listener.listen(QHostAddress::LocalHost))
        qFatal("The stub feed found no free port");
}

StubFeedServer::StubFeedServer(StubHttpServer& http, QObject* parent)
    : StubFeedServer(parent)
{
    m_listener.close();
    http.setUpgradeHandler([guard = QPointer<StubFeedServer>(this)](QTcpSocket* socket) {
        if (guard)
            guard->accept(socket);
        else
            socket->abort();
    });
}

StubFeedServer::~StubFeedServer()
{
    for (QWebSocket* client : m_clients)
        client->disconnect(this);
    qDeleteAll(m_clients);
}

QString StubFeedServer::url() const
{
    return u"http://127.0.0.1:%1"_s.arg(m_listener.serverPort());
}

int StubFeedServer::halfOpenCount() const
{
    return static_cast<int>(std::count_if(
        m_halfOpen.begin(), m_halfOpen.end(), [](const QPointer<QTcpSocket>& s) { return !s.isNull(); }));
}

void StubFeedServer::setGreeting(const QJsonObject& message)
{
    setGreeting(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

void StubFeedServer::send(const QByteArray& text)
{
    for (QWebSocket* client : m_clients)
        client->sendTextMessage(QString::fromUtf8(text));
}

void StubFeedServer::send(const QJsonObject& message)
{
    send(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

void StubFeedServer::flush()
{
    for (QWebSocket* client : m_clients)
        client->flush();
}

void StubFeedServer::cut()
{
    const auto clients = m_clients;
    for (QWebSocket* client : clients)
        client->abort();
    for (const QPointer<QTcpSocket>& socket : std::exchange(m_halfOpen, {})) {
        if (socket)
            socket->abort();
    }
}

void StubFeedServer::closeAll()
{
    const auto clients = m_clients;
    for (QWebSocket* client : clients)
        client->close();
}

void StubFeedServer::shutDown()
{
    m_listener.close();
}

void StubFeedServer::accept(QTcpSocket* socket)
{
    ++m_attempts;
    if (m_mode == Mode::CloseAtOnce) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        socket->disconnectFromHost();
        Q_EMIT attempted();
        return;
    }
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { peekHandshake(socket); });
    Q_EMIT attempted();
    if (socket->bytesAvailable() > 0)
        peekHandshake(socket);
}

void StubFeedServer::peekHandshake(QTcpSocket* socket)
{
    const QByteArray head = socket->peek(socket->bytesAvailable());
    if (!head.contains("\r\n\r\n"))
        return;
    socket->disconnect(this);
    m_lastHead = head;
    m_targets.append(head.split(' ').value(1));
    if (m_mode == Mode::Serve) {
        m_webSockets.handleConnection(socket);
        return;
    }
    m_halfOpen.append(socket);
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    answerHandshake(socket);
}

void StubFeedServer::answerHandshake(QTcpSocket* socket)
{
    switch (m_mode) {
    case Mode::RefuseAndClose:
        socket->write("HTTP/1.1 401 Unauthorized\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
        socket->disconnectFromHost();
        break;
    case Mode::TokenInReason:
        socket->write("HTTP/1.1 401 No " + m_targets.last().mid(m_targets.last().indexOf('=') + 1)
            + "\r\nContent-Length: 0\r\n\r\n");
        socket->disconnectFromHost();
        break;
    case Mode::RefuseAndKeepOpen:
        socket->write("HTTP/1.1 401 Unauthorized\r\nContent-Length: 0\r\n\r\n");
        break;
    case Mode::RedirectAndKeepOpen:
        socket->write("HTTP/1.1 302 Found\r\nLocation: http://127.0.0.1:1/ws/terminal\r\n"
                      "Content-Length: 0\r\n\r\n");
        break;
    case Mode::GarbageAndKeepOpen:
        socket->write("\x01\x02 this is no HTTP \xff\xfe\r\n\r\n\r\n");
        break;
    case Mode::HalfHeader:
        socket->write("HTTP/1.1 101 Switching Protocols\r\nUpgrade: webso");
        break;
    case Mode::Serve:
    case Mode::Silent:
    case Mode::CloseAtOnce:
        break;
    }
}

void StubFeedServer::takeClients()
{
    while (QWebSocket* client = m_webSockets.nextPendingConnection()) {
        m_clients.append(client);
        connect(client, &QWebSocket::textMessageReceived, this, [this](const QString& text) {
            m_received.append(text);
            Q_EMIT messageReceived(text);
        });
        connect(client, &QWebSocket::disconnected, this, [this, client] {
            m_clients.removeOne(client);
            client->deleteLater();
        });
        if (!m_greeting.isEmpty())
            client->sendTextMessage(QString::fromUtf8(m_greeting));
        Q_EMIT clientConnected();
    }
}
