#pragma once

#include <QString>
#include <optional>

/// Percent-encodes a value for the right side of "name=" in a query string; everything but
/// letters, digits, '-', '.', '_' and '~' is encoded, '+' and '&' included.
[[nodiscard]] QString encodeQueryValue(const QString& value);

/// Percent-encodes an id so that it stays one segment of a path. Nothing for "", "." and "..":
/// a path holding those names another resource, so the request must not be sent.
[[nodiscard]] std::optional<QString> encodePathSegment(const QString& id);

/// True when a segment of the path, once decoded, is "." or "..", which Qt would
/// resolve away before sending. The query string is not looked at.
[[nodiscard]] bool hasDotSegment(const QString& path);
