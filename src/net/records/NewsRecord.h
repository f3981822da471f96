#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

/// How strongly an event is expected to move prices; low is whatever is neither of the others.
enum class Impact { Low, Medium, High };

/// What can be read of the economic calendar: of the reply, and of each of its events.
namespace news {

/// The events in the server's order; what is no record stays in the list.
[[nodiscard]] QJsonArray events(const QJsonObject& reply);
/// How many minutes before an event of high impact to warn; `usual` where the reply does not say.
[[nodiscard]] int notifyMinutes(const QJsonObject& reply, int usual);

[[nodiscard]] QString id(const QJsonObject& event);
/// The server's text of the time.
[[nodiscard]] QString time(const QJsonObject& event);
/// Negative once the event has begun; 0 where it cannot be read.
[[nodiscard]] int minutesUntil(const QJsonObject& event);
[[nodiscard]] Impact impact(const QJsonObject& event);
/// As the server words it.
[[nodiscard]] QString impactText(const QJsonObject& event);
[[nodiscard]] QString currency(const QJsonObject& event);
[[nodiscard]] QString title(const QJsonObject& event);

} // namespace news
