#pragma once

#include "app/base/Log.h"

#include <QFile>
#include <QStringList>

namespace fixtures {

/// The log's messages without their times; none when there is no log.
inline QStringList logMessages()
{
    constexpr int timeAndBlanks = 14;
    QFile file(logFilePath());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList messages = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    for (QString& message : messages)
        message = message.mid(timeAndBlanks);
    return messages;
}

} // namespace fixtures
