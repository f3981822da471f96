#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace fixtures {

inline QJsonArray parseArray(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).array();
}

inline QJsonObject parse(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).object();
}

/// What stands alone in a text, such as "1.5", "null" or "\"x\"".
inline QJsonValue parseValue(const QByteArray& json)
{
    return parseArray('[' + json + ']').at(0);
}

} // namespace fixtures
