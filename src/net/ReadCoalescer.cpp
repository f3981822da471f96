#include "net/ReadCoalescer.h"

#include <QJsonDocument>
#include <QPointer>

ReadCoalescer::ReadCoalescer(ApiClient& api, QObject* parent)
    : QObject(parent)
    , m_api(api)
{
}

void ReadCoalescer::refresh(const QString& path, ReplyCallback callback)
{
    const auto running = m_inFlight.find(path);
    if (running != m_inFlight.end())
        *running = std::move(callback);
    else
        send(path, callback);
}

void ReadCoalescer::send(const QString& path, const ReplyCallback& callback)
{
    m_inFlight.insert(path, {});
    m_api.get(path, this, [this, path, callback](const QJsonDocument& document, const QString& error) {
        // The callback may end the session and with it this object.
        const QPointer<ReadCoalescer> alive(this);
        callback(document, error);
        if (alive)
            sendWaiting(path);
    });
}

void ReadCoalescer::sendWaiting(const QString& path)
{
    const ReplyCallback next = m_inFlight.take(path);
    if (next)
        send(path, next);
}
