#include "net/SocketIntake.h"

#include <QSocketNotifier>
#include <QTcpSocket>
#include <QWebSocket>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

SocketIntake::SocketIntake(QWebSocket& socket, QObject* parent)
    : QObject(parent)
    , m_socket(socket)
    , m_longestRest(this)
{
    m_longestRest.setObjectName("longestRest"_L1);
    m_longestRest.setSingleShot(true);
    m_longestRest.setInterval(2s);
    connect(&m_longestRest, &QTimer::timeout, this, &SocketIntake::goOn);
}

void SocketIntake::begin()
{
    m_longestRest.stop();
    const auto connections = m_socket.findChildren<QTcpSocket*>(Qt::FindDirectChildrenOnly);
    for (QTcpSocket* connection : connections) {
        connect(connection, &QTcpSocket::connected, connection, [connection] {
            connection->setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, mostAtOnce);
        });
    }
}

void SocketIntake::rest()
{
    setReading(false);
    if (!m_longestRest.isActive())
        m_longestRest.start();
}

void SocketIntake::goOn()
{
    m_longestRest.stop();
    setReading(true);
}

void SocketIntake::setReading(bool reading)
{
    const auto notifiers = m_socket.findChildren<QSocketNotifier*>();
    for (QSocketNotifier* notifier : notifiers) {
        if (notifier->type() == QSocketNotifier::Read)
            notifier->setEnabled(reading);
    }
}
