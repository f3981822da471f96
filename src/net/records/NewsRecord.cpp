#include "net/records/NewsRecord.h"

#include "net/records/JsonNumber.h"

using namespace Qt::StringLiterals;

QJsonArray news::events(const QJsonObject& reply)
{
    return reply.value("events"_L1).toArray();
}

int news::notifyMinutes(const QJsonObject& reply, int usual)
{
    return jsonInt(reply.value("settings"_L1).toObject().value("notifyMin"_L1), usual);
}

QString news::id(const QJsonObject& event)
{
    return event.value("id"_L1).toString();
}

QString news::time(const QJsonObject& event)
{
    return event.value("eventTime"_L1).toString();
}

int news::minutesUntil(const QJsonObject& event)
{
    return jsonInt(event.value("minutesUntil"_L1), 0);
}

Impact news::impact(const QJsonObject& event)
{
    const QString text = impactText(event);
    if (text == "HIGH"_L1)
        return Impact::High;
    return text == "MEDIUM"_L1 ? Impact::Medium : Impact::Low;
}

QString news::impactText(const QJsonObject& event)
{
    return event.value("impact"_L1).toString();
}

QString news::currency(const QJsonObject& event)
{
    return event.value("currency"_L1).toString();
}

QString news::title(const QJsonObject& event)
{
    return event.value("title"_L1).toString();
}
