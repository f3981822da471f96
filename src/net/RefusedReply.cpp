#include "net/RefusedReply.h"

RefusedReply::RefusedReply(const QNetworkRequest& request, const QString& reason, QObject* parent)
    : QNetworkReply(parent)
{
    setRequest(request);
    setUrl(request.url());
    open(QIODevice::ReadOnly); // before the error: opening clears its text
    setError(ProtocolInvalidOperationError, reason);
    QMetaObject::invokeMethod(this, &RefusedReply::finish, Qt::QueuedConnection);
}

void RefusedReply::finish()
{
    setFinished(true);
    Q_EMIT finished();
}

qint64 RefusedReply::readData(char* /*target*/, qint64 /*maxSize*/)
{
    return -1;
}
