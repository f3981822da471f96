#pragma once

#include <QJsonArray>
#include <QJsonObject>

#include <initializer_list>

/// The server's records and messages as tests send them: ordinary ones, of which a test names only what it is
/// about.
///
///     server.on("GET", "/api/trades/open", StubAnswer::list({records::position("t1").buy(0.5).at(1.1)}));
///     feed.send(records::priceUpdate({{"EURUSD", 1.1, 1.2}}));
///
/// Where a record's odd form is the point, a test writes its JSON out, or changes an ordinary one by with()
/// and without().
namespace records {

/// What may stand in a record. Prices, volumes and money may be texts, too, as servers send exact decimals.
class Value final : public QJsonValue {
public:
    using QJsonValue::QJsonValue;
    Value(const QJsonValue& any)
        : QJsonValue(any)
    {
    }
    Value(const char* text)
        : QJsonValue(QString::fromUtf8(text))
    {
    }
};

/// A JSON object whose ordinary keys can be named one after the other.
template <typename Kind> class Record : public QJsonObject {
public:
    Kind& with(const char* key, const Value& value)
    {
        insert(QLatin1StringView(key), value);
        return static_cast<Kind&>(*this);
    }
    Kind& without(const char* key)
    {
        remove(QLatin1StringView(key));
        return static_cast<Kind&>(*this);
    }
};

/// One of the accounts of whoever has signed in.
class Account final : public Record<Account> {
public:
    Account& status(const Value& text) { return with("status", text); }
    Account& balance(const Value& money) { return with("balance", money); }
    Account& wallet() { return with("isWallet", true); }
    /// Of a plan in place of a demo account.
    Account& plan(const Value& name, int steps, int phase = 1)
    {
        const QJsonObject plan{{QStringLiteral("name"), name}, {QStringLiteral("steps"), steps}};
        return without("type").with("Plan", plan).with("phase", phase);
    }
    Account& funded() { return with("isFunded", true); }
};

/// An active demo account.
[[nodiscard]] inline Account account(const Value& id)
{
    return Account().with("id", id).with("type", "DEMO").with("status", "ACTIVE").with("balance", 1000);
}

/// A row of any of the trade lists.
class Trade final : public Record<Trade> {
public:
    Trade& account(const Value& id) { return with("accountId", id); }
    Trade& symbol(const Value& name) { return with("symbol", name); }
    Trade& buy(const Value& lots) { return with("type", "BUY").with("lotSize", lots); }
    Trade& sell(const Value& lots) { return with("type", "SELL").with("lotSize", lots); }
    /// Where it was filled.
    Trade& at(const Value& price) { return with("entryPrice", price); }
    /// Where it is to be filled.
    Trade& awaits(const Value& price) { return with("pendingPrice", price); }
    Trade& closedAt(const Value& price) { return with("exitPrice", price); }
    Trade& stopLoss(const Value& price) { return with("stopLoss", price); }
    Trade& takeProfit(const Value& price) { return with("takeProfit", price); }
    Trade& profit(const Value& money) { return with("pnl", money); }
    Trade& margin(const Value& money) { return with("margin", money); }
};

/// An open position on EURUSD, bought.
[[nodiscard]] inline Trade position(const Value& id)
{
    return Trade()
        .with("id", id)
        .account("a1")
        .symbol("EURUSD")
        .buy(0.1)
        .with("orderKind", "MARKET")
        .with("status", "OPEN")
        .with("createdAt", "2026-06-01T08:00:00.000Z");
}

/// An order that waits for its price, below the market to buy there.
[[nodiscard]] inline Trade pendingOrder(const Value& id)
{
    return position(id).with("orderKind", "BUY_LIMIT").with("status", "PENDING").awaits(1.05);
}

/// The body that buys at the market, but for the account.
[[nodiscard]] inline Trade marketOrder(const Value& symbol)
{
    return Trade().symbol(symbol).with("orderKind", "MARKET").buy(0.1);
}

/// A row of the history.
[[nodiscard]] inline Trade closedTrade(const Value& id)
{
    return position(id).with("status", "CLOSED").with("closedAt", "2026-06-01T09:00:00.000Z");
}

/// One of the symbols that a hello names.
class Symbol final : public Record<Symbol> {
public:
    Symbol& digits(const Value& decimals) { return with("digits", decimals); }
    Symbol& described(const Value& text) { return with("description", text); }
    /// Its place in lists.
    Symbol& rank(const Value& order) { return with("sortOrder", order); }
};

/// With five decimals, and nothing said of it.
[[nodiscard]] inline Symbol symbol(const Value& name)
{
    return Symbol().with("name", name).digits(5);
}

/// Without an ask, only the bid.
[[nodiscard]] inline QJsonObject quote(const Value& bid, const Value& ask = QJsonValue::Undefined)
{
    return {{QStringLiteral("bid"), bid}, {QStringLiteral("ask"), ask}};
}

/// What a symbol is bought and sold at.
struct Quoted final {
    Value symbol;
    Value bid;
    Value ask = QJsonValue::Undefined; ///< left out
};

/// A map of prices, as hello and price_update carry one.
[[nodiscard]] inline QJsonObject prices(std::initializer_list<Quoted> quotes)
{
    QJsonObject map;
    for (const Quoted& each : quotes)
        map.insert(each.symbol.toString(), quote(each.bid, each.ask));
    return map;
}

/// A candle of a history, which begins at an ISO time.
[[nodiscard]] inline QJsonObject candle(const Value& time, const Value& open, const Value& high,
    const Value& low, const Value& close, const Value& volume = 0)
{
    return {{QStringLiteral("timestamp"), time}, {QStringLiteral("open"), open},
        {QStringLiteral("high"), high}, {QStringLiteral("low"), low}, {QStringLiteral("close"), close},
        {QStringLiteral("volume"), volume}};
}

/// An event of the economic calendar.
class NewsEvent final : public Record<NewsEvent> {
public:
    NewsEvent& title(const Value& text) { return with("title", text); }
    /// "HIGH", "MEDIUM" or "LOW".
    NewsEvent& impact(const Value& text) { return with("impact", text); }
    NewsEvent& in(const Value& minutes) { return with("minutesUntil", minutes); }
};

/// An event of high impact, in five minutes.
[[nodiscard]] inline NewsEvent newsEvent(const Value& id)
{
    return NewsEvent()
        .with("id", id)
        .with("eventTime", "2026-11-20T13:30:00.000Z")
        .with("currency", "USD")
        .title("Rate decision")
        .impact("HIGH")
        .in(5);
}

/// The calendar.
[[nodiscard]] inline QJsonObject news(const QJsonArray& events)
{
    return {{QStringLiteral("events"), events}};
}

/// A message of the feed.
class Message final : public Record<Message> {
public:
    explicit Message(const char* type) { with("type", type); }
    /// Of orders_changed: a pending order became a position.
    Message& filled() { return with("filled", true); }
    /// Of orders_changed: why a position ended.
    Message& closed(const Value& reason) { return with("closeReason", reason); }
};

[[nodiscard]] inline Message hello(const QJsonArray& symbols, const QJsonObject& prices = {})
{
    return Message("hello").with("symbols", symbols).with("prices", prices);
}

[[nodiscard]] inline Message priceUpdate(std::initializer_list<Quoted> quotes)
{
    return Message("price_update").with("data", prices(quotes));
}

[[nodiscard]] inline Message tradesUpdate(const QJsonArray& trades)
{
    return Message("trades_update").with("data", trades);
}

/// Orders or positions of an account are no longer as they were.
[[nodiscard]] inline Message ordersChanged(const Value& account = "a1")
{
    return Message("orders_changed").with("accountId", account);
}

[[nodiscard]] inline Message accountUpdate(const Value& account, const Value& status)
{
    return Message("account_update").with("accountId", account).with("status", status);
}

} // namespace records
