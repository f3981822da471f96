#pragma once

class QJsonValue;

/// The one reading rule for prices, volumes and money: a JSON number, or a string holding one
/// decimal number in the C locale. Anything else, not-a-number, an infinity and magnitudes above
/// 1e15 read as 0.
[[nodiscard]] double jsonNumber(const QJsonValue& value);

/// A counter such as "digits" or "steps": a JSON number without a fraction that fits an int.
/// Anything else, numbers in strings included, reads as the fallback.
[[nodiscard]] int jsonInt(const QJsonValue& value, int fallback);

/// A flag such as "isWallet": a JSON true or false; anything else reads as the fallback.
[[nodiscard]] bool jsonBool(const QJsonValue& value, bool fallback);
