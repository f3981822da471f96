#pragma once

#include <optional>

class QJsonValue;

/// A price by the rule of jsonNumber(), with what that reads as 0 for want of a number told apart from a
/// price of 0: missing, of another type, no number, or beyond 1e15 gives nothing.
[[nodiscard]] std::optional<double> jsonPrice(const QJsonValue& value);
