#include "chart/JsonPrice.h"

#include "net/JsonNumber.h"

#include <QJsonValue>
#include <QString>

std::optional<double> jsonPrice(const QJsonValue& value)
{
    const double price = jsonNumber(value);
    if (price != 0.0)
        return price;
    bool zero = value.isDouble() && value.toDouble() == 0.0;
    if (value.isString())
        zero = value.toString().toDouble(&zero) == 0.0 && zero;
    return zero ? std::optional(0.0) : std::nullopt;
}
