#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

class QNetworkReply;
class QObject;

/// What a finished reply means to its caller. Reading takes the body out of the reply.
struct ReplyOutcome final {
    bool ok = false;       ///< no network error, no HTTP error status, no redirect
    bool sent = false;     ///< the request has left this machine, or may have
    bool whole = false;    ///< the answer came to its end, whatever it says
    bool tooLarge = false; ///< given up for the size of the answer
    int status = 0;        ///< HTTP status, 0 when no answer came
    QByteArray content;    ///< the body as it came
    /// For a person; empty when ok: the body's "message", else the network's own text. Free of the session
    /// token and bounded in length, but a server chose it: show it as plain text.
    QString error;

    /// True when the request failed and yet the server may have carried it out: the connection failed, no
    /// answer came, the answer broke off, or the server had an error of its own.
    [[nodiscard]] bool isUncertain() const { return !ok && sent && (status < 300 || status >= 500); }
    /// True when it is uncertain, and no whole answer came that could tell more.
    [[nodiscard]] bool isUnanswered() const { return isUncertain() && !whole; }

    using Callback = std::function<void(const ReplyOutcome& outcome)>;
    /// Waits for a running reply, tells the waiter once what became of it, and lets the reply go. A waiter
    /// that is gone by then hears nothing; the reply goes all the same.
    static void whenFinished(QNetworkReply* reply, const QObject* waiter, Callback callback);
    /// Reads a reply that has finished.
    [[nodiscard]] static ReplyOutcome read(QNetworkReply* reply);
};
