#pragma once

#include <QByteArray>
#include <QSemaphore>
#include <QThread>

#include <atomic>
#include <vector>

/// A feed for one client, in a thread of its own, so that sending takes nothing from the receiver's turns.
class FeedSource final : public QThread {
    Q_DISABLE_COPY_MOVE(FeedSource)

public:
    /// Listens on a free loopback port when it returns.
    FeedSource();
    ~FeedSource() override;

    /// "http://127.0.0.1:PORT".
    [[nodiscard]] QString url() const;

    /// Sends these texts to the client, `batch` of them every millisecond; 0 means all at once.
    void send(const std::vector<QByteArray>& texts, int batch = 0);

private:
    void run() override;
    void sendWanted(class QTcpSocket& client);

    std::atomic<quint16> m_port = 0;
    std::atomic<bool> m_leaving = false;
    QSemaphore m_listening;
    QSemaphore m_wanted;
    std::vector<QByteArray> m_frames; ///< what to send every millisecond
};
