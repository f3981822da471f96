#pragma once

#include <QColor>

class QJsonValue;

/// A colour by name or as "#rrggbb", without transparency; the fallback for anything else.
[[nodiscard]] QColor readColor(const QJsonValue& value, const QColor& fallback);
