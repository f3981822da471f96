#pragma once

#include <QValidator>

#include <optional>

/// Numbers as people type them: one "." or "," as the decimal sign, whatever the locale, no groups,
/// no exponent.

/// Turns each comma of the text into a point, in place; length and cursor stay.
void commasToPoints(QString& text);

/// The value of a text that is one number (blanks around it allowed), else nothing.
[[nodiscard]] std::optional<double> parseDecimal(const QString& text);

/// How far a text being typed is on its way to a number within `lowest` to `highest` with at most
/// `decimals` decimals. Invalid means that no further keystroke could make it one.
[[nodiscard]] QValidator::State decimalState(
    const QString& text, double lowest, double highest, int decimals);
