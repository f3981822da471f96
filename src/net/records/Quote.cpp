#include "net/records/Quote.h"

#include "app/base/PriceRule.h"
#include "net/records/JsonNumber.h"

#include <QJsonObject>

using namespace Qt::StringLiterals;

Quote readQuote(const QJsonValue& value, int digits)
{
    const QJsonObject record = value.toObject();
    return {priceOrNone(jsonNumber(record.value("bid"_L1)), digits),
        priceOrNone(jsonNumber(record.value("ask"_L1)), digits)};
}

std::optional<Quote> findQuote(const QJsonObject& snapshot, const QString& symbol, int digits)
{
    const auto found = snapshot.constFind(symbol);
    if (found == snapshot.constEnd())
        return std::nullopt;
    return readQuote(found.value(), digits);
}
