#include "mainwindow/account/OrderReaction.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "net/records/EventRecord.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace {

constexpr int orderBalloonMs = 8000;
constexpr int accountBalloonMs = 12000;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(OrderReaction)
};

} // namespace

OrderReaction reactionToOrders(const QJsonObject& event)
{
    const QString reason = event::closeReason(event);
    const QString shown = shownSentence(reason);
    const bool filled = event::isFilled(event);

    OrderReaction reaction;
    reaction.journal = reason.isEmpty() ? Texts::tr("Orders changed — refreshing")
                                        : Texts::tr("Orders changed (%1) — refreshing").arg(shown);
    if (filled) {
        reaction.expert = Texts::tr("Pending order filled");
        reaction.sound = SoundKind::Fill;
        // The event carries no symbol, so the account is named.
        const QString account = shownName(shortId(event::accountId(event)));
        reaction.balloon
            = Balloon{Texts::tr("Order Filled"), Texts::tr("A pending order on %1 was filled.").arg(account),
                Balloon::Kind::Information, orderBalloonMs};
    } else if (reason.isEmpty()) {
        reaction.expert = Texts::tr("Order state changed");
    } else {
        reaction.expert = Texts::tr("Position closed (%1)").arg(shown);
        const bool levelHit = event::isLevelHit(event);
        reaction.sound = levelHit ? SoundKind::Fill : SoundKind::Close;
        if (levelHit) {
            reaction.balloon = Balloon{Texts::tr("Position Closed (%1)").arg(reason),
                //: %1 "SL" or "TP"
                Texts::tr("A position hit its %1.").arg(reason), Balloon::Kind::Information, orderBalloonMs};
        }
    }
    return reaction;
}

OrderReaction reactionToAccount(const QJsonObject& event, bool hasTray)
{
    OrderReaction reaction;
    reaction.journal = Texts::tr("Account %1 status changed to %2")
                           .arg(shownName(event::accountId(event)), shownName(event::status(event)));
    if (!hasTray)
        return reaction;
    const AccountState state = event::state(event);
    if (state == AccountState::Failed) {
        reaction.balloon = Balloon{Texts::tr("Account Failed"),
            Texts::tr("An account breached its risk limit and was closed."), Balloon::Kind::Critical,
            accountBalloonMs};
        reaction.sound = SoundKind::Error;
    } else if (state == AccountState::Passed) {
        reaction.balloon = Balloon{Texts::tr("Challenge Passed"),
            Texts::tr("An account passed its target — pending review."), Balloon::Kind::Information,
            accountBalloonMs};
    }
    return reaction;
}
