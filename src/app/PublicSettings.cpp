#include "app/PublicSettings.h"

#include "app/base/Log.h"
#include "app/base/TerminalSettings.h"
#include "net/SafeRequest.h"
#include "net/records/ServerReply.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr int waitMilliseconds = 3000;
constexpr qint64 mostBytes = 1024LL * 1024;

/// Waits until the reply is finished, or aborted because it takes too long or is too large.
void waitFor(QNetworkReply& reply, int milliseconds)
{
    QEventLoop loop;
    QObject::connect(&reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    // The transfer time-out of a request starts anew with each byte.
    QTimer::singleShot(milliseconds, &loop, [&reply] { reply.abort(); });
    QObject::connect(&reply, &QNetworkReply::readyRead, &loop, [&reply] {
        if (reply.bytesAvailable() > mostBytes)
            reply.abort();
    });
    if (!reply.isFinished())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
}

} // namespace

void adoptPublicSettings(TerminalSettings& settings)
{
    const QUrl url(settings.serverUrl() + "/api/settings/public"_L1);
    const PublicSettings fetched = fetchPublicSettings(url, waitMilliseconds);
    if (!fetched.error.isEmpty()) {
        appLog(u"public config fetch failed: %1"_s.arg(fetched.error));
        return;
    }
    const QString& address = fetched.terminalServerUrl;
    if (address.isEmpty() || address == settings.rawServerUrl())
        return;
    settings.setServerUrl(address);
    appLog(u"adopted admin server url: %1"_s.arg(address));
}

PublicSettings fetchPublicSettings(const QUrl& url, int milliseconds)
{
    QNetworkAccessManager network;
    QNetworkRequest request = safeRequest(url);
    request.setTransferTimeout(milliseconds);
    QNetworkReply* reply = network.get(request);
    waitFor(*reply, milliseconds);
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError)
        return {.terminalServerUrl = {}, .error = reply->errorString()};
    if (reply->attribute(QNetworkRequest::RedirectionTargetAttribute).isValid())
        return {.terminalServerUrl = {}, .error = u"the server redirects to another address"_s};
    return {.terminalServerUrl = terminalServerUrlIn(reply->readAll()), .error = {}};
}

QString terminalServerUrlIn(const QByteArray& body)
{
    return reply::serverUrl(QJsonDocument::fromJson(body).object()).trimmed();
}
