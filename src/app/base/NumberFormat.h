#pragma once

#include <QString>

/// How every number is shown, whatever the user's locale. NaN and infinity are shown as 0.

/// Decimals of a symbol kept within 0 to 15: a price holds no more.
[[nodiscard]] int clampDigits(int digits);

/// A price in fixed notation with `digits` decimals (clamped), decimal point, no groups.
[[nodiscard]] QString formatPrice(double price, int digits);

/// Lots with 2 decimals.
[[nodiscard]] QString formatVolume(double lots);

/// An amount of account currency, 2 decimals, commas between groups of three digits.
[[nodiscard]] QString formatMoney(double amount);

/// The shortest form with at most 6 significant digits.
[[nodiscard]] QString formatGeneral(double value);

/// The number that chooses the plural of a text: `count` within what QObject::tr() takes.
[[nodiscard]] int pluralCount(qint64 count);

/// The first eight characters of a record's id.
[[nodiscard]] QString shortId(const QString& id);
