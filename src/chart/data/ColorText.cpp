#include "chart/data/ColorText.h"

#include <QJsonValue>

QColor readColor(const QJsonValue& value, const QColor& fallback)
{
    const QString name = value.toString();
    // Asked first: Qt would write every unknown name to the log.
    if (!QColor::isValidColorName(name))
        return fallback;
    return QColor(name).rgb();
}
