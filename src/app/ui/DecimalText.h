#pragma once

#include <QValidator>

#include <optional>

/// Numbers as people type them: one "." or "," as the decimal sign, whatever the locale, no groups,
/// no exponent.

/// Turns each comma of the text into a point, in place; length and cursor stay.
void commasToPoints(QString& text);

/// Takes the white space off both ends of a text, line ends and no-break spaces included, in place; the
/// cursor stays at its character. A text of white space alone is left as it is: taken for an empty one, a
/// single blank would delete the number it was typed over.
void trimAround(QString& text, int& cursor);

/// The value of a text that is one number (white space around it allowed), else nothing.
[[nodiscard]] std::optional<double> parseDecimal(const QString& text);

/// How far a text being typed is on its way to a number within `lowest` to `highest` with at most
/// `decimals` decimals. Invalid means that no further keystroke could make it one.
[[nodiscard]] QValidator::State decimalState(
    const QString& text, double lowest, double highest, int decimals);
