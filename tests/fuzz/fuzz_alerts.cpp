// Saved alerts, and prices that set them off: a line with the alerts, then one with a price map.

#include "fuzz/FuzzQt.h"

#include "net/records/PriceSnapshot.h"
#include "panes/AlertBook.h"

using fuzz::demand;

namespace fuzz_alerts {

namespace {

/// The rule as a person would put it.
bool isReached(const PriceAlert& alert, const PriceSnapshot& prices)
{
    const Quote* quote = prices.find(alert.symbol);
    const double bid = quote ? quote->bid : 0.0;
    return bid > 0.0 && !alert.triggered && (alert.above ? bid >= alert.price : bid <= alert.price);
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    std::string_view text = fuzz::textOf(data, size);
    const QString saved = fuzz::stringOf(fuzz::takeLine(text));
    const PriceSnapshot prices(QJsonDocument::fromJson(fuzz::bytesOf(text)).object());

    AlertBook book = AlertBook::fromJson(saved);
    demand(
        AlertBook::fromJson(book.toJson()).alerts() == book.alerts(), "alerts come back as they were saved");

    const QList<PriceAlert> before = book.alerts();
    const QList<AlertBook::Fired> fired = book.check(prices);
    auto next = fired.begin();
    for (qsizetype i = 0; i < before.size(); ++i) {
        const bool fires = next != fired.end() && next->index == i;
        demand(fires == isReached(before[i], prices), "an alert fires where its price is reached");
        demand(book.alerts()[i].triggered == (before[i].triggered || fires), "what has fired is marked");
        next += fires ? 1 : 0;
    }
    demand(next == fired.end(), "no other alert fires");
    demand(book.check(prices).isEmpty(), "an alert fires once");
    if (!before.isEmpty()) {
        book.removeAt(before.size() - 1);
        demand(book.alerts().size() == before.size() - 1, "an alert is removed");
    }
    return 0;
}

const fuzz::Target target("alerts", &attempt);

} // namespace

} // namespace fuzz_alerts
