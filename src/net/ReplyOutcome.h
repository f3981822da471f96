#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

class QNetworkReply;

/// What a finished reply means to its caller. Reading takes the body out of the reply.
struct ReplyOutcome final {
    bool ok = false;        ///< no network error, no HTTP error status, no redirect
    bool sent = false;      ///< the request has left this machine, or may have
    bool whole = false;     ///< the answer came to its end, whatever it says
    int status = 0;         ///< HTTP status, 0 when no answer came
    QByteArray content;     ///< the body as it came
    QJsonDocument document; ///< the parsed body, null when it is not JSON
    QJsonObject body;       ///< the document's object, empty when it is not an object
    QString error; ///< for a person; empty when ok: the body's "message", else the network's own text

    /// True when the server may have carried the request out all the same: it failed on its way, never
    /// answered, its answer broke off, or it had an error of its own.
    [[nodiscard]] bool isUncertain() const { return !ok && sent && (status < 300 || status >= 500); }
    /// The same, and there is no answer to go by.
    [[nodiscard]] bool isUnanswered() const { return isUncertain() && !whole; }

    /// Reads a finished reply. The error is free of the session token and bounded in length, but
    /// it is text chosen by a server: show it as plain text.
    [[nodiscard]] static ReplyOutcome read(QNetworkReply* reply);
    /// The same, but leaves the body of a success unparsed: document and body stay empty.
    [[nodiscard]] static ReplyOutcome readUnparsed(QNetworkReply* reply);
};
