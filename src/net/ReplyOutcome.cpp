#include "net/ReplyOutcome.h"

#include "net/SafeText.h"

#include <QCoreApplication>
#include <QNetworkReply>

using namespace Qt::StringLiterals;

namespace {

bool isRedirect(int status)
{
    return status >= 300 && status < 400;
}

QString networkText(const QNetworkReply& reply, int status)
{
    // Told first: a redirect that asks for the body again fails with the error below.
    if (isRedirect(status))
        return QCoreApplication::translate("ReplyOutcome", "The server answered with a redirect");
    // The request may have been sent; the toolkit words this case "Unknown error".
    if (reply.error() == QNetworkReply::ContentReSendError)
        return QCoreApplication::translate("ReplyOutcome", "Connection closed");
    return reply.errorString();
}

} // namespace

ReplyOutcome ReplyOutcome::read(QNetworkReply* reply)
{
    ReplyOutcome outcome;
    outcome.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    outcome.ok = reply->error() == QNetworkReply::NoError && !isRedirect(outcome.status);
    outcome.document = QJsonDocument::fromJson(reply->isOpen() ? reply->readAll() : QByteArray());
    outcome.body = outcome.document.object();
    if (!outcome.ok) {
        const QString message = outcome.body.value("message"_L1).toString();
        outcome.error = safeText(message.isEmpty() ? networkText(*reply, outcome.status) : message);
    }
    return outcome;
}
