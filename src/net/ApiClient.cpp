#include "net/ApiClient.h"

#include "app/base/ServerText.h"
#include "app/base/TerminalSettings.h"
#include "net/OneShotBody.h"
#include "net/RefusedReply.h"
#include "net/ReplyOutcome.h"
#include "net/ReplyWatch.h"
#include "net/SafeRequest.h"
#include "net/UrlParts.h"
#include "net/records/ServerReply.h"

#include <QJsonDocument>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int statusUnauthorized = 401;

// Qt opens this many connections to one host; further requests wait unsent.
constexpr int connectionsPerManager = 6;

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

ReplyWatch::Kind kindOf(const QString& path, bool authorised)
{
    if (!authorised) // a sign-in: nothing is lost with its answer
        return ReplyWatch::Kind::Read;
    return path.startsWith("/api/trades/"_L1) ? ReplyWatch::Kind::Order : ReplyWatch::Kind::Change;
}

} // namespace

ApiClient::ApiClient(TerminalSettings& settings, QObject* parent)
    : QObject(parent)
    , m_settings(settings)
{
}

ApiClient::~ApiClient() = default;

void ApiClient::setLimits(const RequestLimits& limits)
{
    m_limits = limits;
    m_readManager->setTransferTimeout(limits.silence);
    for (QNetworkAccessManager* manager : std::as_const(m_changeManagers))
        manager->setTransferTimeout(limits.silence);
}

QNetworkAccessManager* ApiClient::makeManager()
{
    auto* manager = new QNetworkAccessManager(this);
    manager->setTransferTimeout(m_limits.silence);
    return manager;
}

QNetworkAccessManager& ApiClient::freeManager()
{
    m_changes.removeIf([](const Change& change) { return !change.reply || change.reply->isFinished(); });
    for (QNetworkAccessManager* manager : std::as_const(m_changeManagers)) {
        const auto busy = std::count_if(m_changes.cbegin(), m_changes.cend(),
            [manager](const Change& change) { return change.reply->manager() == manager; });
        if (busy < connectionsPerManager)
            return *manager;
    }
    m_changeManagers.append(makeManager());
    return *m_changeManagers.constLast();
}

void ApiClient::leaveIfGivenUp(const QNetworkReply& reply)
{
    const ReplyWatch* watch = ReplyWatch::of(reply);
    if (reply.error() != QNetworkReply::OperationCanceledError || (watch && watch->wasTooLarge()))
        return;
    QNetworkAccessManager* const left = reply.manager();
    if (left == m_readManager)
        m_readManager = makeManager();
    else if (!m_changeManagers.removeOne(left))
        return;
    // Whoever waited for a reply may still hold it when it has finished.
    const auto letGoIfUnused = [left] {
        if (left->findChildren<QNetworkReply*>().isEmpty()) // what is being destroyed is none any more
            left->deleteLater();
    };
    for (const QNetworkReply* each : left->findChildren<QNetworkReply*>())
        connect(each, &QObject::destroyed, left, letGoIfUnused);
}

QNetworkRequest ApiClient::buildRequest(const QString& path, bool authorise) const
{
    QNetworkRequest request = safeRequest(QUrl(m_settings.serverUrl() + path));
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json"_L1);
    if (const QString token = m_settings.token(); authorise && isSendable(token))
        request.setRawHeader("Authorization", "Bearer " + token.toUtf8());
    return request;
}

QNetworkReply* ApiClient::change(
    const QByteArray& verb, const QString& path, const QByteArray& body, bool authorise)
{
    QNetworkRequest request = buildRequest(path, authorise);
    const ReplyWatch::Kind kind = kindOf(path, authorise);
    if (!isSafe(request.url(), path)) {
        auto* refused = new RefusedReply(request, tr("The request address is not valid"), this);
        new ReplyWatch(*refused, kind, m_limits.change);
        return refused;
    }
    request.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    request.setHeader(QNetworkRequest::ContentLengthHeader, body.size());
    auto* const upload = new OneShotBody(body);
    QNetworkReply* reply = freeManager().sendCustomRequest(request, verb, upload);
    upload->setParent(reply);
    new ReplyWatch(*reply, kind, m_limits.change, upload);
    connect(reply, &QNetworkReply::finished, this, [this, reply] { leaveIfGivenUp(*reply); });
    m_changes.append({reply,
        authorise ? QString(QLatin1StringView(verb) + u' ' + path + u' ' + QString::fromUtf8(body)).trimmed()
                  : QString()});
    return reply;
}

QStringList ApiClient::unansweredChanges() const
{
    QStringList texts;
    for (const Change& change : m_changes) {
        if (change.reply && !change.reply->isFinished() && !change.text.isEmpty())
            texts.append(change.text);
    }
    return texts;
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

ReplyWatch* ApiClient::getBody(const QString& path, QObject* context, BodyCallback callback)
{
    const QNetworkRequest request = buildRequest(path, true);
    QNetworkReply* const reply = isSafe(request.url(), path)
        ? m_readManager->get(request)
        : new RefusedReply(request, tr("The request address is not valid"), this);
    auto* watch = new ReplyWatch(*reply, ReplyWatch::Kind::Read, m_limits.read);
    connect(reply, &QNetworkReply::finished, this, [this, reply] { leaveIfGivenUp(*reply); });
    ReplyOutcome::whenFinished(reply, this,
        [this, path, guard = QPointer<QObject>(context), callback = std::move(callback)](
            const ReplyOutcome& outcome) { finishGet(outcome, path, guard, callback); });
    return watch;
}

void ApiClient::finishGet(const ReplyOutcome& outcome, const QString& path, const QPointer<QObject>& context,
    const BodyCallback& callback)
{
    const QPointer<ApiClient> alive(this);
    if (!outcome.ok && outcome.status == statusUnauthorized)
        Q_EMIT unauthorized();
    if (alive && outcome.tooLarge)
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
    QNetworkReply* const reply = change("POST"_ba, u"/api/auth/login"_s,
        QJsonDocument(reply::credentialsBody(email, password)).toJson(QJsonDocument::Compact), false);
    ReplyOutcome::whenFinished(
        reply, this, [this, email](const ReplyOutcome& outcome) { finishLogin(outcome, email); });
}

void ApiClient::finishLogin(const ReplyOutcome& outcome, const QString& email)
{
    const QJsonObject answer = QJsonDocument::fromJson(outcome.content).object();
    const std::optional<QString> token = reply::token(answer);
    if (outcome.ok && token) {
        m_settings.setEmail(email);
        m_settings.setToken(*token);
        Q_EMIT loginSucceeded(answer);
        return;
    }
    QString message = outcome.error;
    if (outcome.ok)
        message = shownReason(reply::message(answer));
    Q_EMIT loginFailed(message.isEmpty() ? tr("Unexpected server response") : message);
}
