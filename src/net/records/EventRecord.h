#pragma once

#include <QJsonObject>
#include <QString>

/// What an account has come to. A state that is none of these asks for no word of its own.
enum class AccountState { Other, Failed, Passed };

/// What can be read of the feed's events about orders and accounts.
namespace event {

/// The account that the event is about; empty where it names none.
[[nodiscard]] QString accountId(const QJsonObject& event);
/// A pending order was filled.
[[nodiscard]] bool isFilled(const QJsonObject& event);
/// Why a position was closed, as the server words it; empty where it says nothing.
[[nodiscard]] QString closeReason(const QJsonObject& event);
/// It was closed at its stop loss or its take profit.
[[nodiscard]] bool isLevelHit(const QJsonObject& event);
/// An account's new state, as the server words it.
[[nodiscard]] QString status(const QJsonObject& event);
[[nodiscard]] AccountState state(const QJsonObject& event);

} // namespace event
