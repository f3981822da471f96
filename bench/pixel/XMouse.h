#pragma once

#include <QPoint>
#include <QString>

struct xcb_connection_t;

/// The mouse of an X server. What it does comes to programs as from a real one.
class XMouse final {
    Q_DISABLE_COPY_MOVE(XMouse)

public:
    /// Gives up when there is no such server, or it has no XTEST.
    explicit XMouse(const QString& display);
    ~XMouse();

    void moveTo(const QPoint& place);
    /// Of the left button. Both tell when, in ns of CLOCK_MONOTONIC, just before the server was told.
    qint64 press();
    qint64 release();

private:
    qint64 fake(unsigned char event, unsigned char detail, const QPoint& place);

    xcb_connection_t* m_connection;
    unsigned int m_root = 0;
};
