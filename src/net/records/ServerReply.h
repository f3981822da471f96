#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

/// What can be read of the answers that are no lists, and the body that signs in.
namespace reply {

/// The human-readable reason of a refusal; empty where there is none.
[[nodiscard]] QString message(const QJsonObject& body);

/// The bearer token of a sign-in; its presence is what makes a sign-in successful.
[[nodiscard]] std::optional<QString> token(const QJsonObject& user);
/// The address of the user who has signed in.
[[nodiscard]] QString email(const QJsonObject& user);

/// The address of the server that public settings recommend; empty where they name none.
[[nodiscard]] QString serverUrl(const QJsonObject& publicSettings);

[[nodiscard]] QJsonObject credentialsBody(const QString& email, const QString& password);

} // namespace reply
