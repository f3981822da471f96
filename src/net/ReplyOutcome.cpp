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

void parse(ReplyOutcome& outcome)
{
    outcome.document = QJsonDocument::fromJson(outcome.content);
    outcome.body = outcome.document.object();
}

} // namespace

ReplyOutcome ReplyOutcome::read(QNetworkReply* reply)
{
    ReplyOutcome outcome = readUnparsed(reply);
    if (outcome.ok)
        parse(outcome);
    return outcome;
}

ReplyOutcome ReplyOutcome::readUnparsed(QNetworkReply* reply)
{
    ReplyOutcome outcome;
    outcome.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    outcome.ok = reply->error() == QNetworkReply::NoError && !isRedirect(outcome.status);
    if (reply->isOpen())
        outcome.content = reply->readAll();
    if (!outcome.ok) {
        parse(outcome);
        const QString message = outcome.body.value("message"_L1).toString();
        outcome.error = safeText(message.isEmpty() ? networkText(*reply, outcome.status) : message);
    }
    return outcome;
}
