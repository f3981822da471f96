// A message of the live feed, as WsClient reads it.

#include "fuzz/FuzzQt.h"

#include "app/base/PriceRule.h"
#include "app/base/ServerText.h"
#include "net/records/EventRecord.h"
#include "net/records/FeedMessage.h"
#include "net/records/PriceSnapshot.h"
#include "net/records/SymbolRecord.h"
#include "net/records/TradeRecord.h"

using fuzz::demand;

namespace fuzz_feed {

namespace {

/// Some symbols have few decimals, some impossibly many; which ones depends on the name alone.
int digitsOf(const QString& symbol)
{
    return static_cast<int>(symbol.size()) % 18 - 1;
}

bool isPriceOrNone(double price, int digits)
{
    return price == 0.0 || isPrice(price, digits);
}

void readPrices(const QJsonObject& map)
{
    const PriceSnapshot snapshot(map, &digitsOf);
    demand(snapshot.entries().size() == static_cast<std::size_t>(map.size()), "each symbol is there once");
    QString before;
    for (const PriceSnapshot::Entry& entry : snapshot.entries()) {
        demand(before.isNull() || before < entry.symbol, "symbols are in order");
        before = entry.symbol;
        const int digits = digitsOf(entry.symbol);
        demand(isPriceOrNone(entry.quote.bid, digits), "a bid is a price or none");
        demand(isPriceOrNone(entry.quote.ask, digits), "an ask is a price or none");
        const Quote* found = snapshot.find(entry.symbol);
        demand(found && *found == entry.quote, "a symbol is found");
        demand(findQuote(map, entry.symbol, digits) == entry.quote, "both readers of a quote agree");
    }
}

void readSymbols(const QJsonArray& symbols)
{
    const QList<QJsonObject> list = symbol::inListOrder(symbols);
    demand(list.size() <= symbols.size(), "no symbol is made up");
    for (const QJsonObject& record : list) {
        demand(!symbol::name(record).isEmpty(), "a listed symbol has a name");
        for (const double number : {symbol::dailyOpen(record), symbol::contractSize(record),
                 symbol::commission(record), symbol::swapLong(record), symbol::swapShort(record)})
            demand(fuzz::isAmount(number), "a symbol's numbers are amounts");
        demand(fuzz::isOneLine(shownSentence(symbol::description(record))), "a description is one line");
        static_cast<void>(symbol::digits(record));
    }
}

void readTrades(const QJsonArray& rows)
{
    for (const QJsonValue row : rows) {
        const QJsonObject record = row.toObject();
        demand(fuzz::isAmount(trade::profit(record)), "a profit is an amount");
        static_cast<void>(trade::id(record));
    }
}

void readEvent(const QJsonObject& event)
{
    static_cast<void>(event::accountId(event));
    static_cast<void>(event::isFilled(event));
    demand(!event::isLevelHit(event) || event::closeReason(event).size() == 2, "a level has two letters");
    const QString status = shownName(event::status(event));
    demand(fuzz::isOneLine(status) && status.size() <= 65, "a shown state is one short line");
    static_cast<void>(event::state(event));
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    const QByteArray utf8 = fuzz::stringOf(fuzz::textOf(data, size)).toUtf8();
    const QJsonObject message = QJsonDocument::fromJson(utf8).object();
    switch (feed::kind(message)) {
    case feed::Kind::Hello:
        readSymbols(feed::symbols(message));
        readPrices(feed::helloPrices(message));
        break;
    case feed::Kind::Prices:
        readPrices(feed::prices(message));
        break;
    case feed::Kind::Trades:
        readTrades(feed::trades(message));
        break;
    case feed::Kind::OrdersChanged:
    case feed::Kind::AccountUpdate:
        readEvent(message);
        break;
    case feed::Kind::Pong:
    case feed::Kind::Unknown:
        break;
    }
    return 0;
}

const fuzz::Target target("feed", &attempt);

} // namespace

} // namespace fuzz_feed
