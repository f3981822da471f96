#include "net/ReplyWatch.h"

#include "net/OneShotBody.h"

#include <QNetworkReply>

namespace {

// Far above any real answer; a server that sends more would only fill the memory.
constexpr qint64 largestReply = 16LL * 1024 * 1024;

} // namespace

ReplyWatch::ReplyWatch(QNetworkReply& reply, Kind kind, int longestMs, const OneShotBody* body)
    : QObject(&reply)
    , m_reply(reply)
    , m_body(body)
    , m_kind(kind)
    , m_deadline(this)
{
    m_sinceNews.start();
    m_deadline.setSingleShot(true);
    m_deadline.setInterval(longestMs);
    m_deadline.start();
    connect(&m_deadline, &QTimer::timeout, this, &ReplyWatch::giveUp);
    connect(&reply, &QNetworkReply::finished, &m_deadline, &QTimer::stop);
    connect(&reply, &QNetworkReply::requestSent, this, &ReplyWatch::onSent);
    connect(&reply, &QNetworkReply::metaDataChanged, this, &ReplyWatch::onNews);
    connect(&reply, &QNetworkReply::downloadProgress, this, &ReplyWatch::capSize);
    // Progress is reported a few times a second only, too late on a fast connection.
    connect(&reply, &QNetworkReply::readyRead, this, [this] {
        onNews();
        capSize(m_reply.bytesAvailable());
    });
}

const ReplyWatch* ReplyWatch::of(const QNetworkReply& reply)
{
    return reply.findChild<ReplyWatch*>(QString(), Qt::FindDirectChildrenOnly);
}

bool ReplyWatch::wasSent() const
{
    // Qt does not tell when it sends an empty body. That is at its end from the start, so it counts as sent.
    return m_sent || (m_body && m_body->atEnd())
        || m_reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
}

void ReplyWatch::giveUp()
{
    if (m_reply.isRunning())
        m_reply.abort();
}

void ReplyWatch::onSent()
{
    if (m_sent) // Qt has sent it once more
        return;
    m_sent = true;
    m_sinceNews.start();
    m_deadline.start();
}

void ReplyWatch::onNews()
{
    m_hasNews = true;
    m_sinceNews.start();
}

void ReplyWatch::capSize(qint64 size)
{
    if (size <= largestReply || m_tooLarge)
        return;
    m_tooLarge = true; // first: the reply finishes within giveUp()
    giveUp();
}
