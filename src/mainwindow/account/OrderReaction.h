#pragma once

#include "app/base/Balloon.h"
#include "app/base/SoundKind.h"

#include <QJsonObject>
#include <QString>
#include <optional>

/// What one order or account event of the feed makes the terminal say, play and show.
struct OrderReaction final {
    QString journal; ///< Journal line
    QString expert;  ///< line of the Experts tab; empty for none
    std::optional<SoundKind> sound;
    std::optional<Balloon> balloon;
};

/// An "orders_changed" event: a fill, a close with its reason, or any other change.
[[nodiscard]] OrderReaction reactionToOrders(const QJsonObject& event);

/// An "account_update" event. Its sound belongs to the balloon: without a tray neither is given.
[[nodiscard]] OrderReaction reactionToAccount(const QJsonObject& event, bool hasTray);
