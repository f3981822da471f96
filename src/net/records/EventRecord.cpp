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

QString event::status(const QJsonObject& event)
{
    return event.value("status"_L1).toString();
}
