#include "net/ReadCoalescer.h"

#include "net/ReplyWatch.h"

#include <QJsonDocument>
#include <QStringList>

#include <algorithm>
#include <utility>

ReadCoalescer::ReadCoalescer(ApiClient& api, QObject* parent)
    : QObject(parent)
    , m_api(api)
    , m_nextLook(this)
{
    m_nextLook.setSingleShot(true);
    connect(&m_nextLook, &QTimer::timeout, this, &ReadCoalescer::endSilent);
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
        endSilent();
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

std::chrono::milliseconds ReadCoalescer::timeLeft(const Running& running) const
{
    const std::chrono::milliseconds patience = running.watch->hasNews() ? m_patience : running.patience;
    return patience - std::chrono::milliseconds(running.watch->silentFor());
}

void ReadCoalescer::endSilent()
{
    QStringList silent;
    // At the latest, since the patience falls to that once an answer begins.
    std::chrono::milliseconds soonest = m_patience;
    bool othersWait = false;
    for (auto running = m_inFlight.cbegin(); running != m_inFlight.cend(); ++running) {
        if (!running->next || !running->watch)
            continue;
        const std::chrono::milliseconds left = timeLeft(*running);
        if (left.count() <= 0) {
            silent.append(running.key());
        } else {
            othersWait = true;
            soonest = std::min(soonest, left);
        }
    }
    if (othersWait)
        m_nextLook.start(soonest);
    const QPointer<ReadCoalescer> alive(this);
    for (const QString& path : std::as_const(silent)) {
        endForNext(path);
        if (!alive)
            return;
    }
}

void ReadCoalescer::endForNext(const QString& path)
{
    const auto running = m_inFlight.find(path);
    // The end of another one may have changed this one.
    if (running == m_inFlight.end() || !running->next || !running->watch || timeLeft(*running).count() > 0)
        return;
    ReplyWatch* const watch = std::exchange(running->watch, nullptr); // so that nobody ends it twice
    const std::chrono::milliseconds patience = watch->hasNews() ? m_patience : 2 * running->patience;
    running->number = ++m_reads; // the old read ends within giveUp(), and finds that it no longer counts
    const QPointer<ReadCoalescer> alive(this);
    watch->giveUp();
    // Taken only now: whoever hears of that end may have wished for this path again.
    if (alive)
        send(path, m_inFlight.take(path).next, patience);
}
