#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>

/// What can be read of a tradable symbol. Texts that are missing read as empty, numbers as 0.
namespace symbol {

/// The key that every other record refers to.
[[nodiscard]] QString name(const QJsonObject& record);
[[nodiscard]] QString description(const QJsonObject& record);
/// Decimals of its prices as the record states them, unchecked; usualPriceDigits where it states none.
[[nodiscard]] int digits(const QJsonObject& record);
/// The day's opening price; 0 where none is known.
[[nodiscard]] double dailyOpen(const QJsonObject& record);
/// Units per lot.
[[nodiscard]] double contractSize(const QJsonObject& record);
/// Per lot.
[[nodiscard]] double commission(const QJsonObject& record);
[[nodiscard]] double swapLong(const QJsonObject& record);
[[nodiscard]] double swapShort(const QJsonObject& record);

/// The records in the order of every list: as the server ranks them, equal ranks by name. Records without a
/// name, and what is no record, are left out.
[[nodiscard]] QList<QJsonObject> inListOrder(const QJsonArray& symbols);

} // namespace symbol
