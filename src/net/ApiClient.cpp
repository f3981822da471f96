#include "net/ApiClient.h"

#include "app/SafeRequest.h"
#include "app/TerminalSettings.h"
#include "net/OneShotBody.h"
#include "net/RefusedReply.h"
#include "net/ReplyOutcome.h"
#include "net/SafeText.h"
#include "net/UrlParts.h"

#include <QJsonDocument>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int transferTimeoutMs = 15000;
constexpr int statusUnauthorized = 401;

/// What a reply is the answer to, as unansweredChanges() tells it.
constexpr auto changeProperty = "change";

// Far above any real answer; a server that sends more would only fill the memory.
constexpr qint64 largestReply = 16LL * 1024 * 1024;
constexpr auto tooLarge = "tooLarge";

// Line breaks in a header value are sent as they are and would add headers of their own.
bool isSendable(const QString& token)
{
    return !token.isEmpty() && std::none_of(token.begin(), token.end(), [](QChar c) {
        return c.category() == QChar::Other_Control;
    });
}

// The address and the path are joined as text: a path such as "@host/" would name another host, and
// what follows a "#" would be left out.
bool isSafe(const QUrl& url, const QString& path)
{
    return path.startsWith(u'/') && !hasDotSegment(path) && url.isValid() && !url.host().isEmpty()
        && !url.hasFragment() && (url.scheme() == "https"_L1 || url.scheme() == "http"_L1);
}

void capSize(QNetworkReply* reply)
{
    const auto abortWhenOver = [reply](qint64 size) {
        if (size <= largestReply || reply->property(tooLarge).toBool())
            return;
        reply->setProperty(tooLarge, true); // first: the reply finishes within abort()
        reply->abort();
    };
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply, abortWhenOver);
    // Progress is reported a few times a second only, too late on a fast connection.
    QObject::connect(reply, &QNetworkReply::readyRead, reply,
        [reply, abortWhenOver] { abortWhenOver(reply->bytesAvailable()); });
}

} // namespace

ApiClient::ApiClient(QObject* parent)
    : QObject(parent)
    , m_manager(this)
{
    m_manager.setTransferTimeout(transferTimeoutMs);
}

ApiClient::~ApiClient() = default;

QNetworkRequest ApiClient::buildRequest(const QString& path, bool authorise) const
{
    const TerminalSettings& settings = TerminalSettings::instance();
    QNetworkRequest request = safeRequest(QUrl(settings.serverUrl() + path));
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json"_L1);
    if (const QString token = settings.token(); authorise && isSendable(token))
        request.setRawHeader("Authorization", "Bearer " + token.toUtf8());
    return request;
}

QNetworkReply* ApiClient::read(const QString& path)
{
    const QNetworkRequest request = buildRequest(path, true);
    if (!isSafe(request.url(), path))
        return new RefusedReply(request, tr("The request address is not valid"), &m_manager);
    QNetworkReply* reply = m_manager.get(request);
    capSize(reply);
    return reply;
}

QNetworkReply* ApiClient::change(
    const QByteArray& verb, const QString& path, const QByteArray& body, bool authorise)
{
    QNetworkRequest request = buildRequest(path, authorise);
    if (!isSafe(request.url(), path))
        return new RefusedReply(request, tr("The request address is not valid"), &m_manager);
    // Before the reads that wait for one of the few connections to a host.
    request.setPriority(QNetworkRequest::HighPriority);
    request.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    request.setHeader(QNetworkRequest::ContentLengthHeader, body.size());
    auto* const upload = new OneShotBody(body);
    QNetworkReply* reply = m_manager.sendCustomRequest(request, verb, upload);
    upload->setParent(reply);
    capSize(reply);
    if (authorise)
        reply->setProperty(changeProperty,
            QString(QLatin1StringView(verb) + u' ' + path + u' ' + QString::fromUtf8(body)).trimmed());
    return reply;
}

QStringList ApiClient::unansweredChanges() const
{
    QStringList changes;
    const auto replies = m_manager.findChildren<QNetworkReply*>(Qt::FindDirectChildrenOnly);
    for (const QNetworkReply* reply : replies) {
        const QString change = reply->property(changeProperty).toString();
        if (!change.isEmpty() && !reply->isFinished())
            changes.append(change);
    }
    return changes;
}

void ApiClient::get(const QString& path, ReplyCallback callback)
{
    get(path, this, std::move(callback));
}

void ApiClient::get(const QString& path, QObject* context, ReplyCallback callback)
{
    getBody(path, context, [callback = std::move(callback)](const QByteArray& body, const QString& error) {
        callback(QJsonDocument::fromJson(body), error);
    });
}

void ApiClient::getBody(const QString& path, QObject* context, BodyCallback callback)
{
    QNetworkReply* const reply = read(path);
    connect(reply, &QNetworkReply::finished, this,
        [this, reply, path, guard = QPointer<QObject>(context), callback = std::move(callback)] {
            finishGet(reply, path, guard, callback);
        });
}

void ApiClient::finishGet(
    QNetworkReply* reply, const QString& path, const QPointer<QObject>& context, const BodyCallback& callback)
{
    reply->deleteLater();
    const ReplyOutcome outcome = ReplyOutcome::readUnparsed(reply);
    const bool wasTooLarge = reply->property(tooLarge).toBool();
    const QPointer<ApiClient> alive(this);
    if (!outcome.ok && outcome.status == statusUnauthorized)
        Q_EMIT unauthorized();
    if (alive && wasTooLarge)
        Q_EMIT replyTooLarge(path);
    if (alive && context)
        callback(outcome.ok ? outcome.content : QByteArray(), outcome.error);
}

QNetworkReply* ApiClient::post(const QString& path, const QJsonObject& body)
{
    return change("POST"_ba, path, QJsonDocument(body).toJson(QJsonDocument::Compact));
}

QNetworkReply* ApiClient::put(const QString& path, const QJsonObject& body)
{
    return change("PUT"_ba, path, QJsonDocument(body).toJson(QJsonDocument::Compact));
}

QNetworkReply* ApiClient::del(const QString& path)
{
    return change("DELETE"_ba, path, {});
}

void ApiClient::login(const QString& email, const QString& password)
{
    const QJsonObject credentials{{u"email"_s, email}, {u"password"_s, password}};
    QNetworkReply* const reply = change(
        "POST"_ba, u"/api/auth/login"_s, QJsonDocument(credentials).toJson(QJsonDocument::Compact), false);
    connect(reply, &QNetworkReply::finished, this, [this, reply, email] { finishLogin(reply, email); });
}

void ApiClient::finishLogin(QNetworkReply* reply, const QString& email)
{
    reply->deleteLater();
    const ReplyOutcome outcome = ReplyOutcome::read(reply);
    const auto token = outcome.body.constFind("token"_L1);
    if (outcome.ok && token != outcome.body.constEnd()) {
        TerminalSettings& settings = TerminalSettings::instance();
        settings.setEmail(email);
        settings.setToken(token->toString()); // writes both to the disk
        Q_EMIT loginSucceeded(outcome.body);
        return;
    }
    QString message = outcome.error;
    if (outcome.ok)
        message = safeText(outcome.body.value("message"_L1).toString());
    Q_EMIT loginFailed(message.isEmpty() ? tr("Unexpected server response") : message);
}
