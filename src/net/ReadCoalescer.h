#pragma once

#include "net/ApiClient.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <chrono>

/// Keeps bursts of equal reads from piling up in front of a slow server. While a read of a path is in flight,
/// asking for it again sends nothing; once the answer is in, one further read follows, so that whoever asked
/// meanwhile sees data read after they asked. Reads of different paths do not wait for each other. A read
/// that has brought nothing for two seconds is ended when another one waits behind it. If its answer had not
/// even begun, the next read is given twice the time to begin, so that a slow server is heard in the end. An
/// answer that has begun is given no more than those two seconds. Owned by whoever refreshes.
class ReadCoalescer final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ReadCoalescer)

public:
    /// The client must outlive the coalescer.
    explicit ReadCoalescer(ApiClient& api, QObject* parent = nullptr);

    /// How long a read may bring nothing while another wish waits.
    void setPatience(std::chrono::milliseconds patience) { m_patience = patience; }

    /// Reads a path; see ApiClient::get for what the callback gets. Of several calls waiting for
    /// the same read to end only the last one's callback is kept: the callers of one path want one
    /// thing done with its newest answer. Callbacks are dropped when the coalescer dies.
    void refresh(const QString& path, ReplyCallback callback);
    /// The same with the body as it came.
    void refreshBody(const QString& path, BodyCallback callback);

private:
    struct Running {
        QPointer<ReplyWatch> watch;
        quint64 number = 0;
        std::chrono::milliseconds patience{0}; ///< until the answer begins
        BodyCallback next;                     ///< when set, for the refresh that follows
    };

    void send(const QString& path, const BodyCallback& callback, std::chrono::milliseconds patience);
    void sendWaiting(const QString& path);
    /// How long this read may still bring nothing, if it goes on as it does now; 0 or less for one to be
    /// ended.
    [[nodiscard]] std::chrono::milliseconds timeLeft(const Running& running) const;
    /// Ends the reads that have been silent for long enough while a wish waits behind them, and sees to it
    /// that the others are looked at again.
    void endSilent();
    void endForNext(const QString& path);

    ApiClient& m_api;
    std::chrono::milliseconds m_patience{2000};
    quint64 m_reads = 0;
    QHash<QString, Running> m_inFlight;
    QTimer m_nextLook; ///< at the reads with a wish behind them: one for all, however many come and go
};
