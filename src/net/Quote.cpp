#include "net/Quote.h"

#include "net/JsonNumber.h"

#include <QJsonObject>

using namespace Qt::StringLiterals;

Quote readQuote(const QJsonValue& value)
{
    const QJsonObject record = value.toObject();
    return {jsonNumber(record.value("bid"_L1)), jsonNumber(record.value("ask"_L1))};
}

std::optional<Quote> findQuote(const QJsonObject& snapshot, const QString& symbol)
{
    const auto found = snapshot.constFind(symbol);
    if (found == snapshot.constEnd())
        return std::nullopt;
    return readQuote(found.value());
}
