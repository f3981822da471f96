#include "scenes/FeedSource.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtEndian>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// A text message as a server sends it: one frame without a mask.
QByteArray frameOf(const QByteArray& text)
{
    QByteArray head("\x81");
    if (text.size() < 126) {
        head.append(static_cast<char>(text.size()));
    } else {
        const quint16 length = qToBigEndian(static_cast<quint16>(text.size()));
        head.append(char(126)).append(reinterpret_cast<const char*>(&length), sizeof(length));
    }
    return head + text;
}

QByteArray handshakeReply(const QByteArray& request)
{
    const QByteArray name = "sec-websocket-key:";
    const qsizetype from = request.toLower().indexOf(name) + name.size();
    const QByteArray key = request.mid(from, request.indexOf('\r', from) - from).trimmed();
    return "HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
           "Sec-WebSocket-Accept: "
        + QCryptographicHash::hash(key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11", QCryptographicHash::Sha1)
              .toBase64()
        + "\r\n\r\n";
}

} // namespace

FeedSource::FeedSource()
{
    start();
    m_listening.acquire();
}

FeedSource::~FeedSource()
{
    m_leaving = true;
    m_wanted.release();
    wait();
}

QString FeedSource::url() const
{
    return u"http://127.0.0.1:%1"_s.arg(m_port);
}

void FeedSource::send(const std::vector<QByteArray>& texts, int batch)
{
    m_frames.clear();
    int inBatch = 0;
    for (const QByteArray& text : texts) {
        if (m_frames.empty() || (batch > 0 && inBatch == batch)) {
            m_frames.emplace_back();
            inBatch = 0;
        }
        m_frames.back() += frameOf(text);
        ++inBatch;
    }
    m_wanted.release();
}

void FeedSource::run()
{
    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHost))
        qFatal("The feed found no free port");
    m_port = server.serverPort();
    m_listening.release();
    constexpr int patienceMs = 10000;
    if (!server.waitForNewConnection(patienceMs))
        return;
    const std::unique_ptr<QTcpSocket> client(server.nextPendingConnection());
    QByteArray request;
    while (!request.contains("\r\n\r\n") && client->waitForReadyRead(patienceMs))
        request += client->readAll();
    client->write(handshakeReply(request));
    client->flush();
    while (true) {
        m_wanted.acquire();
        if (m_leaving)
            return;
        sendWanted(*client);
    }
}

void FeedSource::sendWanted(QTcpSocket& client)
{
    QElapsedTimer clock;
    clock.start();
    qint64 dueMs = 0;
    for (const QByteArray& frames : m_frames) {
        if (const qint64 early = dueMs - clock.elapsed(); early > 0)
            msleep(static_cast<unsigned long>(early));
        client.write(frames);
        while (client.bytesToWrite() > 0 && client.waitForBytesWritten())
            continue;
        ++dueMs;
    }
}
