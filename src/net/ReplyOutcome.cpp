#include "net/ReplyOutcome.h"

#include "app/base/ServerText.h"
#include "net/ReplyWatch.h"
#include "net/records/ServerReply.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QUrl>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

bool isRedirect(int status)
{
    return status >= 300 && status < 400;
}

bool isRefusal(int status)
{
    return status >= 400 && status < 500;
}

bool wasGivenUp(const QNetworkReply& reply)
{
    return reply.error() == QNetworkReply::OperationCanceledError
        || reply.error() == QNetworkReply::TimeoutError;
}

/// False when the connection failed before the answer had come to its end. Qt gives errors that an answer
/// brings higher numbers than errors of the connection; only ContentReSendError stands among them without an
/// answer.
bool isWhole(QNetworkReply::NetworkError error)
{
    return error == QNetworkReply::NoError
        || (error > QNetworkReply::UnknownProxyError && error != QNetworkReply::ContentReSendError);
}

/// Whether Qt has nothing to say but what a device says of which nothing is known.
bool isWordless(const QNetworkReply& reply)
{
    return reply.error() == QNetworkReply::UnknownNetworkError
        && reply.errorString() == QBuffer().errorString();
}

/// Why there was no connection, and where to: a wrong address is the commonest reason. A read that was given
/// up in time names the server, too: what is silent or comes to no end may be another machine than meant.
QString withServer(const QString& reason, const QNetworkReply& reply)
{
    constexpr auto serverOnly
        = QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment;
    //: %1 why there is no connection, %2 the address of the server
    return QCoreApplication::translate("ReplyOutcome", "%1 (%2)")
        .arg(reason, reply.request().url().toDisplayString(serverOnly));
}

/// Qt's words would not say the one thing that counts: whether the request may have been carried out.
QString givenUpText(const QNetworkReply& reply, const ReplyWatch& watch, int status)
{
    if (!watch.wasSent()) {
        return withServer(
            QCoreApplication::translate("ReplyOutcome", "not sent: no connection to the server"), reply);
    }
    if (isRefusal(status))
        return QCoreApplication::translate("ReplyOutcome", "refused; the reason did not arrive");
    switch (watch.kind()) {
    case ReplyWatch::Kind::Order:
        return QCoreApplication::translate("ReplyOutcome", "no answer; the order may have been carried out");
    case ReplyWatch::Kind::Change:
        return QCoreApplication::translate("ReplyOutcome", "no answer; it may have been carried out");
    case ReplyWatch::Kind::Read:
        break;
    }
    return {};
}

QString networkText(const QNetworkReply& reply, int status)
{
    // Before the next check, since a redirect that asks for the body again fails with that error.
    if (isRedirect(status))
        return QCoreApplication::translate("ReplyOutcome", "The server answered with a redirect");
    // The request may have been sent; Qt words this case "Unknown error", as it does a connection that was
    // reset while it was being made.
    if (reply.error() == QNetworkReply::ContentReSendError || isWordless(reply))
        return QCoreApplication::translate("ReplyOutcome", "Connection closed");
    const ReplyWatch* watch = ReplyWatch::of(reply);
    const QString text = watch && wasGivenUp(reply) ? givenUpText(reply, *watch, status) : QString();
    if (!text.isEmpty())
        return text;
    const bool serverEndedIt = isWhole(reply.error()) || reply.error() == QNetworkReply::RemoteHostClosedError
        || (watch && watch->wasTooLarge());
    return serverEndedIt ? reply.errorString() : withServer(reply.errorString(), reply);
}

} // namespace

void ReplyOutcome::whenFinished(QNetworkReply* reply, const QObject* waiter, Callback callback)
{
    QObject::connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    QObject::connect(reply, &QNetworkReply::finished, waiter,
        [reply, callback = std::move(callback)] { callback(read(reply)); });
}

ReplyOutcome ReplyOutcome::read(QNetworkReply* reply)
{
    ReplyOutcome outcome;
    outcome.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    outcome.ok = reply->error() == QNetworkReply::NoError && !isRedirect(outcome.status);
    outcome.whole = isWhole(reply->error());
    const ReplyWatch* watch = ReplyWatch::of(*reply);
    outcome.sent = !watch || watch->wasSent();
    outcome.tooLarge = watch && watch->wasTooLarge();
    if (reply->isOpen())
        outcome.content = reply->readAll();
    if (!outcome.ok) {
        const QString message = reply::message(QJsonDocument::fromJson(outcome.content).object()).trimmed();
        outcome.error = shownReason(message.isEmpty() ? networkText(*reply, outcome.status) : message);
    }
    return outcome;
}
