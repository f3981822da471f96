#pragma once

#include <QJsonObject>
#include <QString>

/// What can be read of an account.
namespace account {

[[nodiscard]] QString id(const QJsonObject& record);
/// In account currency.
[[nodiscard]] double balance(const QJsonObject& record);
/// As the server words it.
[[nodiscard]] QString status(const QJsonObject& record);
/// An active account that is no wallet.
[[nodiscard]] bool isTradable(const QJsonObject& record);

/// What to call the account: "Real", "Demo" or its plan, with how far its challenge is. One line of plain
/// text.
[[nodiscard]] QString label(const QJsonObject& record);

} // namespace account
