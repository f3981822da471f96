#pragma once

#include <QJsonObject>
#include <QString>

/// What can be read of the feed's events about orders and accounts.
namespace event {

/// The account that the event is about; empty where it names none.
[[nodiscard]] QString accountId(const QJsonObject& event);
/// A pending order was filled.
[[nodiscard]] bool isFilled(const QJsonObject& event);
/// Why a position was closed, as the server words it; empty where it says nothing.
[[nodiscard]] QString closeReason(const QJsonObject& event);
/// An account's new state, as the server words it.
[[nodiscard]] QString status(const QJsonObject& event);

} // namespace event
