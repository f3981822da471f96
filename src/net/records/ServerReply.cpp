#include "net/records/ServerReply.h"

using namespace Qt::StringLiterals;

QString reply::message(const QJsonObject& body)
{
    return body.value("message"_L1).toString();
}

std::optional<QString> reply::token(const QJsonObject& user)
{
    const auto found = user.constFind("token"_L1);
    return found != user.constEnd() ? std::optional(found->toString()) : std::nullopt;
}

QString reply::email(const QJsonObject& user)
{
    return user.value("email"_L1).toString();
}

QString reply::serverUrl(const QJsonObject& publicSettings)
{
    return publicSettings.value("settings"_L1).toObject().value("terminalServerUrl"_L1).toString();
}

QJsonObject reply::credentialsBody(const QString& email, const QString& password)
{
    return {{u"email"_s, email}, {u"password"_s, password}};
}
