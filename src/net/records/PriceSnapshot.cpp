#include "net/records/PriceSnapshot.h"

#include "app/base/PriceRule.h"

#include <QJsonObject>

#include <algorithm>

namespace {

bool isEarlier(const PriceSnapshot::Entry& a, const PriceSnapshot::Entry& b)
{
    return a.symbol < b.symbol;
}

/// Most prices are prices whatever their symbol's decimals, so the decimals are rarely asked for.
void dropWhatIsNoPrice(PriceSnapshot::Entry& entry, const PriceSnapshot::DigitsOf& digitsOf)
{
    Quote& quote = entry.quote;
    if (isPriceAnyway(quote.bid) && isPriceAnyway(quote.ask))
        return;
    const int digits = digitsOf ? digitsOf(entry.symbol) : usualPriceDigits;
    quote = {priceOrNone(quote.bid, digits), priceOrNone(quote.ask, digits)};
}

} // namespace

PriceSnapshot::PriceSnapshot(const QJsonObject& prices, const DigitsOf& digitsOf)
{
    m_entries.reserve(static_cast<std::size_t>(prices.size()));
    for (auto it = prices.constBegin(), end = prices.constEnd(); it != end; ++it) {
        m_entries.push_back({it.key(), readQuote(it.value(), mostPriceDigits)});
        dropWhatIsNoPrice(m_entries.back(), digitsOf);
    }
    // The map has an order of its own, which differs for rare letters only.
    if (!std::is_sorted(m_entries.begin(), m_entries.end(), isEarlier))
        std::sort(m_entries.begin(), m_entries.end(), isEarlier);
}

const Quote* PriceSnapshot::find(const QString& symbol) const
{
    const auto found = std::lower_bound(m_entries.begin(), m_entries.end(), symbol,
        [](const Entry& entry, const QString& wanted) { return entry.symbol < wanted; });
    return found != m_entries.end() && found->symbol == symbol ? &found->quote : nullptr;
}
