#include "net/ReadCoalescer.h"

#include "net/ReplyWatch.h"

#include <QJsonDocument>
#include <QTimer>

#include <algorithm>
#include <utility>

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
    if (running == m_inFlight.end()) {
        send(path, callback, m_patience);
        return;
    }
    if (!std::exchange(running->next, std::move(callback)))
        endWhenSilent(path, running->number);
}

void ReadCoalescer::send(
    const QString& path, const BodyCallback& callback, std::chrono::milliseconds patience)
{
    const quint64 number = ++m_reads;
    ReplyWatch* watch = m_api.getBody(
        path, this, [this, path, callback, number](const QByteArray& body, const QString& error) {
            const auto running = m_inFlight.find(path);
            if (running == m_inFlight.end() || running->number != number)
                return;
            running->watch.clear(); // the callback may ask again, which must not end this read: it has ended
            // The callback may end the session and with it this object.
            const QPointer<ReadCoalescer> alive(this);
            callback(body, error);
            if (alive)
                sendWaiting(path);
        });
    m_inFlight.insert(path, {watch, number, patience, {}});
}

void ReadCoalescer::sendWaiting(const QString& path)
{
    const BodyCallback next = m_inFlight.take(path).next;
    if (next)
        send(path, next, m_patience);
}

void ReadCoalescer::endWhenSilent(const QString& path, quint64 number)
{
    const auto running = m_inFlight.find(path);
    if (running == m_inFlight.end() || running->number != number || !running->watch)
        return;
    const bool hasNews = running->watch->hasNews();
    const std::chrono::milliseconds patience = hasNews ? m_patience : running->patience;
    const std::chrono::milliseconds silent(running->watch->silentFor());
    if (silent < patience) {
        // After `m_patience` at the latest, since the patience falls to that once the answer begins.
        QTimer::singleShot(std::min(patience - silent, m_patience), this,
            [this, path, number] { endWhenSilent(path, number); });
        return;
    }
    const Running ended = *running;
    running->number = ++m_reads; // the old read ends within giveUp(), and finds that it no longer counts
    running->next = {};
    const QPointer<ReadCoalescer> alive(this);
    ended.watch->giveUp();
    if (alive)
        send(path, ended.next, hasNews ? m_patience : 2 * patience);
}
