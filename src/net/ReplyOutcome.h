#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

class QNetworkReply;

/// What a finished reply means to its caller. Reading takes the body out of the reply.
struct ReplyOutcome final {
    bool ok = false;        ///< no network error, no HTTP error status, no redirect
    int status = 0;         ///< HTTP status, 0 when no answer came
    QByteArray content;     ///< the body as it came
    QJsonDocument document; ///< the parsed body, null when it is not JSON
    QJsonObject body;       ///< the document's object, empty when it is not an object
    QString error; ///< for a person; empty when ok: the body's "message", else the network's own text

    /// True when the server may have carried the request out all the same: it failed on its way, never
    /// answered, or its answer broke off.
    [[nodiscard]] bool isUncertain() const { return !ok && (status < 300 || status >= 500); }

    /// Reads a finished reply. The error is free of the session token and bounded in length, but
    /// it is text chosen by a server: show it as plain text.
    [[nodiscard]] static ReplyOutcome read(QNetworkReply* reply);
    /// The same, but leaves the body of a success unparsed: document and body stay empty.
    [[nodiscard]] static ReplyOutcome readUnparsed(QNetworkReply* reply);
};
