#pragma once

#include "net/RequestLimits.h"

#include <QJsonObject>
#include <QList>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <functional>

class QJsonDocument;
class QNetworkReply;
class QNetworkRequest;
class ReplyWatch;
class TerminalSettings;
struct ReplyOutcome;

/// Completion of a read: the parsed body and an empty error, or a null document and a text for a
/// person. A success whose body is not JSON arrives as a null document without an error.
using ReplyCallback = std::function<void(const QJsonDocument& document, const QString& error)>;

/// The same for callers that parse the body themselves; it is empty after an error.
using BodyCallback = std::function<void(const QByteArray& body, const QString& error)>;

/// Talks HTTP(S) to the platform server. Address and token are taken from the settings at each call; a token
/// that is empty or holds a control character is left out. Each call is one request, given up after 15
/// seconds without progress, and in any case after a minute, or after half a minute when it changes state;
/// what comes next is sent on new connections. State-changing calls never wait behind reads, nor for each
/// other. Paths begin with "/", and ids in them are encoded by the caller (net/UrlParts.h); a path that could
/// reach another host or resource is answered with an error and never sent.
class ApiClient final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ApiClient)

public:
    /// The settings must outlive the client.
    explicit ApiClient(TerminalSettings& settings, QObject* parent = nullptr);
    ~ApiClient() override;

    /// Other limits than the usual ones, for requests from now on.
    void setLimits(const RequestLimits& limits);

    /// Reads a path; the callback runs once, unless this client is gone by then.
    void get(const QString& path, ReplyCallback callback);
    /// The same; the callback is also dropped when the context is gone.
    void get(const QString& path, QObject* context, ReplyCallback callback);
    /// The same with the body as it came. The watch that is returned knows how the read is going, and can end
    /// it.
    ReplyWatch* getBody(const QString& path, QObject* context, BodyCallback callback);

    /// State-changing calls. They reach the server at most once, whatever happens to the
    /// connection. The caller hands the reply to ReplyOutcome::whenFinished at once; it never finishes
    /// before this call has returned. Replies die with the client, without a finished signal.
    [[nodiscard]] QNetworkReply* post(const QString& path, const QJsonObject& body);
    [[nodiscard]] QNetworkReply* put(const QString& path, const QJsonObject& body);
    [[nodiscard]] QNetworkReply* del(const QString& path);

    /// The state-changing calls that have no answer yet, oldest first: verb, path and body of each. What
    /// became of them only the server knows. Sign-ins are left out.
    [[nodiscard]] QStringList unansweredChanges() const;

    /// Signs in. An answer that has a "token", whatever it holds, is a success; token and e-mail are in the
    /// settings before loginSucceeded.
    void login(const QString& email, const QString& password);

Q_SIGNALS:
    void loginSucceeded(const QJsonObject& user);
    void loginFailed(const QString& message);
    /// A read failed with HTTP status 401; emitted before that read's callback.
    void unauthorized();
    /// A read was given up because its reply is larger than 16 MiB; emitted before that read's callback.
    void replyTooLarge(const QString& path);

private:
    /// A state-changing call that may have no answer yet.
    struct Change {
        QPointer<QNetworkReply> reply;
        QString text; ///< see unansweredChanges()
    };

    [[nodiscard]] QNetworkRequest buildRequest(const QString& path, bool authorise) const;
    [[nodiscard]] QNetworkAccessManager* makeManager();
    /// A manager with a connection to spare.
    [[nodiscard]] QNetworkAccessManager& freeManager();
    /// Puts nothing more on the connections beside one on which this reply was given up: each of them may
    /// have died in the same way without an end, and would be waited for in its turn.
    void leaveIfGivenUp(const QNetworkReply& reply);
    [[nodiscard]] QNetworkReply* change(
        const QByteArray& verb, const QString& path, const QByteArray& body, bool authorise = true);
    void finishGet(const ReplyOutcome& outcome, const QString& path, const QPointer<QObject>& context,
        const BodyCallback& callback);
    void finishLogin(const ReplyOutcome& outcome, const QString& email);

    TerminalSettings& m_settings;
    RequestLimits m_limits;
    QNetworkAccessManager* m_readManager = makeManager(); ///< a child of this client, as the others are
    /// State-changing calls; children of this client. A further one is added when more calls are
    /// unanswered than Qt opens connections for the others.
    QList<QNetworkAccessManager*> m_changeManagers;
    QList<Change> m_changes; ///< oldest first
};
