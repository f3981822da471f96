#pragma once

#include <QNetworkReply>

/// The reply to a request that must not leave this machine. It finishes from the event loop, like
/// any other, with ProtocolInvalidOperationError and the given text.
class RefusedReply final : public QNetworkReply {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RefusedReply)

public:
    RefusedReply(const QNetworkRequest& request, const QString& reason, QObject* parent);

    void abort() override { }

protected:
    qint64 readData(char* target, qint64 maxSize) override;

private:
    void finish();
};
