#include "net/records/JsonNumber.h"

#include <QJsonValue>
#include <QString>
#include <array>
#include <charconv>
#include <cmath>

namespace {

// No price, volume or balance comes near this; what does is damage, and would spoil sums and columns.
constexpr double largestMagnitude = 1e15;

// QString::toDouble goes through the locale machinery, letter by letter: the prices of one snapshot would
// cost more than twice the parsing of the whole message. It reads only what is unusual.
double numberIn(const QString& text)
{
    std::array<char, 32> digits{};
    if (text.size() > static_cast<qsizetype>(digits.size()))
        return text.toDouble();
    char* end = digits.data();
    for (const QChar c : text)
        *end++ = c.toLatin1(); // 0 for what is not Latin-1, and that is not part of a number
    double number = 0.0;
    const auto [rest, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && rest == end ? number : text.toDouble();
}

} // namespace

double jsonNumber(const QJsonValue& value)
{
    const double number = value.isString() ? numberIn(value.toString()) : value.toDouble();
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
