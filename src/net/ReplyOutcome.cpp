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
    // The toolkit words this case "Unknown error".
    if (reply.error() == QNetworkReply::ContentReSendError)
        return QCoreApplication::translate("ReplyOutcome", "Connection closed");
    if (reply.error() == QNetworkReply::NoError && isRedirect(status))
        return QCoreApplication::translate("ReplyOutcome", "The server answered with a redirect");
    return reply.errorString();
}

} // namespace

ReplyOutcome ReplyOutcome::read(QNetworkReply* reply)
{
    ReplyOutcome outcome;
    outcome.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    outcome.ok = reply->error() == QNetworkReply::NoError && !isRedirect(outcome.status);
    outcome.document = QJsonDocument::fromJson(reply->readAll());
    outcome.body = outcome.document.object();
    if (!outcome.ok) {
        const QString message = outcome.body.value("message"_L1).toString();
        outcome.error = safeText(message.isEmpty() ? networkText(*reply, outcome.status) : message);
    }
    return outcome;
}
