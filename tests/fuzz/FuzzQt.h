#pragma once

#include "fuzz/Fuzz.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <algorithm>
#include <cmath>

/// The same for the parts that speak Qt.
namespace fuzz {

inline QByteArray bytesOf(std::string_view text)
{
    return {text.data(), static_cast<qsizetype>(text.size())};
}

/// As a socket or a file would hand it on: text that is no UTF-8 has become replacement characters.
inline QString stringOf(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline QByteArray jsonOf(const QJsonArray& array)
{
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

inline QByteArray jsonOf(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

/// Whether nothing in it begins a new line.
inline bool isOneLine(const QString& text)
{
    return std::none_of(text.begin(), text.end(), [](QChar c) {
        return c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line
            || c.category() == QChar::Separator_Paragraph;
    });
}

/// Whether it can be a price, a volume or money: finite, and no larger than any of these.
inline bool isAmount(double number)
{
    return std::isfinite(number) && std::abs(number) <= 1e15;
}

} // namespace fuzz
