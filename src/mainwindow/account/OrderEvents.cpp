#include "mainwindow/account/OrderEvents.h"

OrderEvents::OrderEvents(bool hasTray, QObject* parent)
    : QObject(parent)
    , m_hasTray(hasTray)
{
}

void OrderEvents::onOrdersChanged(const QJsonObject& event)
{
    const OrderReaction reaction = reactionToOrders(event);
    Q_EMIT journalLine(tr("Trade"), reaction.journal);
    Q_EMIT expertLine(tr("Execution"), reaction.expert, LineKind::Ordinary);
    notify(reaction);
    Q_EMIT accountsRefreshWanted();
    Q_EMIT tradesRefreshWanted();
    Q_EMIT historyRefreshWanted();
}

void OrderEvents::onAccountUpdated(const QJsonObject& event)
{
    const OrderReaction reaction = reactionToAccount(event, m_hasTray);
    Q_EMIT journalLine(tr("Account"), reaction.journal);
    notify(reaction);
    Q_EMIT accountsRefreshWanted();
}

void OrderEvents::notify(const OrderReaction& reaction)
{
    if (reaction.sound)
        Q_EMIT soundWanted(*reaction.sound);
    if (m_hasTray && reaction.balloon)
        Q_EMIT balloonWanted(*reaction.balloon);
}
