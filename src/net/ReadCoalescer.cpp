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
    refreshBody(path, [callback = std::move(callback)](const QByteArray& body, const QString& error) {
        callback(QJsonDocument::fromJson(body), error);
    });
}

void ReadCoalescer::refreshBody(const QString& path, BodyCallback callback)
{
    const auto running = m_inFlight.find(path);
    if (running != m_inFlight.end())
        *running = std::move(callback);
    else
        send(path, callback);
}

void ReadCoalescer::send(const QString& path, const BodyCallback& callback)
{
    m_inFlight.insert(path, {});
    m_api.getBody(path, this, [this, path, callback](const QByteArray& body, const QString& error) {
        // The callback may end the session and with it this object.
        const QPointer<ReadCoalescer> alive(this);
        callback(body, error);
        if (alive)
            sendWaiting(path);
    });
}

void ReadCoalescer::sendWaiting(const QString& path)
{
    const BodyCallback next = m_inFlight.take(path);
    if (next)
        send(path, next);
}
