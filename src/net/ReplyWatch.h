#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class OneShotBody;
class QNetworkReply;

/// Watches one request from its start to its end: gives it up when it takes too long or brings too much, and
/// knows whether it has left this machine. A child of the reply, and gone with it.
class ReplyWatch final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ReplyWatch)

public:
    enum class Kind {
        Read,
        Change, ///< changes something on the server
        Order,  ///< changes a trade
    };

    /// `longestMs` counts from now, and anew from the moment when the request is really sent. `body` is what
    /// is uploaded, if anything; it lives as long as the reply.
    ReplyWatch(QNetworkReply& reply, Kind kind, int longestMs, const OneShotBody* body = nullptr);

    /// The watch of a reply; null when it has none.
    [[nodiscard]] static const ReplyWatch* of(const QNetworkReply& reply);

    [[nodiscard]] Kind kind() const { return m_kind; }
    /// False only where it is certain that the server cannot have seen the whole request.
    [[nodiscard]] bool wasSent() const;
    /// The reply was given up for its size.
    [[nodiscard]] bool wasTooLarge() const { return m_tooLarge; }
    /// The reply has brought something, if only the head of an answer.
    [[nodiscard]] bool hasNews() const { return m_hasNews; }
    /// Milliseconds since the reply last brought something. Before it has brought anything: since the request
    /// was sent, or else asked for.
    [[nodiscard]] qint64 silentFor() const { return m_sinceNews.elapsed(); }

    /// Ends the request, if it still runs. Its reply finishes before this returns.
    void giveUp();

private:
    void onSent();
    void onNews();
    void capSize(qint64 size);

    QNetworkReply& m_reply;
    const OneShotBody* const m_body;
    const Kind m_kind;
    bool m_sent = false;
    bool m_hasNews = false;
    bool m_tooLarge = false;
    QElapsedTimer m_sinceNews;
    QTimer m_deadline;
};
