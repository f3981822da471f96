#include "net/records/Quote.h"

#include "app/base/PriceRule.h"
#include "net/records/JsonNumber.h"

#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Qt 6.4 orders letters beyond U+FFFF now before and now behind the last ones below it, by whether a key was
/// written with an escape, and so may not find a key with such letters that is there.
QJsonObject::const_iterator findKey(const QJsonObject& object, const QString& key)
{
    const auto found = object.constFind(key);
    const bool isReliable = std::none_of(key.begin(), key.end(), [](QChar c) { return c >= u'\xD800'; });
    if (found != object.constEnd() || isReliable)
        return found;
    auto at = object.constBegin();
    while (at != object.constEnd() && at.key() != key)
        ++at;
    return at;
}

} // namespace

Quote readQuote(const QJsonValue& value, int digits)
{
    const QJsonObject record = value.toObject();
    return {priceOrNone(jsonNumber(record.value("bid"_L1)), digits),
        priceOrNone(jsonNumber(record.value("ask"_L1)), digits)};
}

std::optional<Quote> findQuote(const QJsonObject& snapshot, const QString& symbol, int digits)
{
    const auto found = findKey(snapshot, symbol);
    if (found == snapshot.constEnd())
        return std::nullopt;
    return readQuote(found.value(), digits);
}
