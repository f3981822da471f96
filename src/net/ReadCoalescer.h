#pragma once

#include "net/ApiClient.h"

#include <QHash>
#include <QObject>

/// Keeps bursts of equal reads from piling up in front of a slow server. While a read of a path is
/// in flight, asking for it again sends nothing; once the answer is in, one further read follows,
/// so that whoever asked meanwhile sees data read after they asked. Reads of different paths do
/// not wait for each other. Owned by whoever refreshes.
class ReadCoalescer final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ReadCoalescer)

public:
    /// The client must outlive the coalescer.
    explicit ReadCoalescer(ApiClient& api, QObject* parent = nullptr);

    /// Reads a path; see ApiClient::get for what the callback gets. Of several calls waiting for
    /// the same read to end only the last one's callback is kept: the callers of one path want one
    /// thing done with its newest answer. Callbacks are dropped when the coalescer dies.
    void refresh(const QString& path, ReplyCallback callback);
    /// The same with the body as it came.
    void refreshBody(const QString& path, BodyCallback callback);

private:
    void send(const QString& path, const BodyCallback& callback);
    void sendWaiting(const QString& path);

    ApiClient& m_api;
    // A key stands for a read in flight; its value, when set, for the refresh that follows it.
    QHash<QString, BodyCallback> m_inFlight;
};
