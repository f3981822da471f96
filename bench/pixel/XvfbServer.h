#pragma once

#include <QProcess>
#include <QSize>
#include <QString>
#include <QTemporaryDir>

/// An X server of its own, without a window manager, whose screen lies in a file. Ends with this object.
class XvfbServer final {
    Q_DISABLE_COPY_MOVE(XvfbServer)

public:
    /// Gives up when it does not start.
    explicit XvfbServer(const QSize& size);
    ~XvfbServer();

    /// ":7"
    [[nodiscard]] const QString& display() const { return m_display; }
    [[nodiscard]] QString screenFile() const;
    [[nodiscard]] qint64 processId() const { return m_server.processId(); }

private:
    QTemporaryDir m_folder;
    QProcess m_server;
    QString m_display;
};
