#pragma once

#include <QObject>
#include <QTimer>

class QWebSocket;

/// How much of what has arrived a web socket takes in at once, and whether it takes anything. QWebSocket
/// reads whatever the system has kept for it in one turn of the event loop, and its own limit of that
/// (QWebSocket::setReadBufferSize) is no way to slow it down: a frame that is longer never arrives.
class SocketIntake final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SocketIntake)

public:
    /// What the system keeps for a connection, about, in bytes: a few milliseconds of reading, and enough for
    /// 2.5 MB a second from a server that is a tenth of a second away.
    static constexpr int mostAtOnce = 256 * 1024;

    /// The socket must outlive this.
    explicit SocketIntake(QWebSocket& socket, QObject* parent = nullptr);

    /// Sees to it that the connection that open() has just begun brings not much more than `mostAtOnce` in a
    /// turn, and that it does not rest.
    void begin();
    /// Lets the connection rest: what is sent then stays with the system, and after that with the sender, who
    /// has to wait. Where the socket still has bytes to read, that may end the rest: whoever gets another
    /// message asks again. After two seconds the rest ends by itself, since a socket that gets nothing more
    /// of a frame for five gives its connection up.
    void rest();
    void goOn();

private:
    void setReading(bool reading);

    QWebSocket& m_socket;
    QTimer m_longestRest;
};
