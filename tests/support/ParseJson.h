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

} // namespace fixtures
