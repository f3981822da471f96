#include "net/records/EventRecord.h"

#include "net/records/JsonNumber.h"

using namespace Qt::StringLiterals;

QString event::accountId(const QJsonObject& event)
{
    return event.value("accountId"_L1).toString();
}

bool event::isFilled(const QJsonObject& event)
{
    return jsonBool(event.value("filled"_L1), false);
}

QString event::closeReason(const QJsonObject& event)
{
    return event.value("closeReason"_L1).toString();
}

bool event::isLevelHit(const QJsonObject& event)
{
    const QString reason = closeReason(event);
    return reason == "SL"_L1 || reason == "TP"_L1;
}

QString event::status(const QJsonObject& event)
{
    return event.value("status"_L1).toString();
}

AccountState event::state(const QJsonObject& event)
{
    const QString text = status(event);
    if (text == "FAILED"_L1)
        return AccountState::Failed;
    return text == "PASSED"_L1 ? AccountState::Passed : AccountState::Other;
}
