#include "net/JsonNumber.h"

#include <QJsonValue>
#include <cmath>

namespace {

// No price, volume or balance comes near this; what does is damage, and would spoil sums and columns.
constexpr double largestMagnitude = 1e15;

} // namespace

double jsonNumber(const QJsonValue& value)
{
    const double number = value.isString() ? value.toString().toDouble() : value.toDouble();
    return std::isfinite(number) && std::abs(number) <= largestMagnitude ? number : 0.0;
}

int jsonInt(const QJsonValue& value, int fallback)
{
    return value.toInt(fallback);
}

bool jsonBool(const QJsonValue& value, bool fallback)
{
    return value.toBool(fallback);
}
