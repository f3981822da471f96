#include "practice/server/Platform.h"

#include "practice/server/Api.h"
#include "practice/server/PathPlayer.h"
#include "practice/server/WireRecords.h"
#include "practice/storage/MetaStore.h"
#include "practice/storage/StorageError.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <variant>

namespace practice {

namespace {

constexpr const char* playedToKey = "playedTo";

Broker loadBroker(const std::vector<SymbolSpec>& symbols, TradeStore& trades)
{
    try {
        return Broker(symbols, UuidSource::fresh(), trades.load());
    } catch (const std::invalid_argument& error) {
        throw StorageError(std::string("the stored accounts contradict themselves: ") + error.what());
    }
}

// The stored data is right up to the last change: the platform that stored it had seen all prices before it,
// and as long as that ran, later prices changed nothing.
TimeMs lastMoment(Database& database, const BrokerState& state, TimeMs now)
{
    TimeMs moment = now;
    if (state.liveTrades.empty())
        return moment;
    const std::optional<std::string> text = MetaStore(database).value(playedToKey);
    if (text && std::from_chars(text->data(), text->data() + text->size(), moment).ec == std::errc())
        return moment;
    moment = 0;
    for (const Trade& trade : state.liveTrades)
        moment = std::max(moment, trade.updatedAt);
    return moment;
}

} // namespace

Platform::Platform(Database& database, PriceSource& market, const Clock& clock)
    : m_database(database)
    , m_market(market)
    , m_clock(clock)
    , m_trades(database)
    , m_drawings(database)
    , m_owners(m_trades.accountOwners())
    , m_broker(loadBroker(market.symbols(), m_trades))
    , m_playedTo(lastMoment(database, m_broker.state(), clock.now()))
{
    for (std::size_t symbol = 0; symbol < market.symbols().size(); ++symbol)
        m_quotes.push_back({symbol, {}});
}

void Platform::advance()
{
    const TimeMs now = m_clock.now();
    std::vector<SymbolQuote> changed;
    for (SymbolQuote& last : m_quotes) {
        const Quote quote = m_market.quote(last.symbol, now);
        if (quote == last.quote)
            continue;
        last.quote = quote;
        changed.push_back(last);
    }
    if (!changed.empty())
        inform([&](PlatformListener& listener) { listener.pricesMoved(changed, now); });
    playTo(now, m_quotes);
}

bool Platform::closeEverything()
{
    const TimeMs now = m_clock.now();
    playTo(now);
    const ChangeSet changes = m_broker.closeEverything(now);
    if (!m_broker.state().liveTrades.empty()) {
        m_broker.undo(changes);
        return false;
    }
    store(changes, now);
    announce(changes, now);
    return true;
}

void Platform::catchUp()
{
    try {
        playTo(m_clock.now());
    } catch (const StorageError&) {
        // advance() tries again and reports it.
    }
}

void Platform::playTo(TimeMs now)
{
    std::vector<SymbolQuote> quotes;
    for (const SymbolQuote& last : m_quotes)
        quotes.push_back({last.symbol, m_market.quote(last.symbol, now)});
    playTo(now, quotes);
}

void Platform::playTo(TimeMs now, std::span<const SymbolQuote> present)
{
    if (m_playedTo < now - 1) {
        PathPlayer player(m_market, m_broker,
            [this](std::span<const SymbolQuote> quotes, TimeMs moment) { return show(quotes, moment); });
        player.play(m_playedTo, now - 1);
    }
    show(present, now);
}

bool Platform::show(std::span<const SymbolQuote> quotes, TimeMs now)
{
    m_playedTo = now - 1; // so that playing begins here again if it fails
    const ChangeSet changes = m_broker.onPrices(quotes, now);
    store(changes, now);
    announce(changes, now);
    m_playedTo = now;
    return !changes.empty();
}

Trade Platform::execute(const TradeCommand& command)
{
    const TimeMs now = m_clock.now();
    playTo(now);
    const CommandResult result = carryOut(command, now);
    inform([&](PlatformListener& listener) {
        listener.commandEnded(command, result.tradeId, result.refusal, now);
    });
    if (!result.accepted())
        throw ApiError{result.refusal->httpStatus, result.refusal->message};
    announce(result.changes, now);
    return tradeAfter(result);
}

CommandResult Platform::carryOut(const TradeCommand& command, TimeMs now)
{
    struct Visitor {
        Broker& broker;
        TimeMs now;
        CommandResult operator()(const PlaceRequest& order) const { return broker.place(order, now); }
        CommandResult operator()(const CloseCommand& close) const { return broker.close(close.tradeId, now); }
        CommandResult operator()(const CancelCommand& cancel) const
        {
            return broker.cancel(cancel.tradeId, now);
        }
        CommandResult operator()(const ModifyCommand& modify) const
        {
            return broker.modify(modify.tradeId, modify.change, now);
        }
    };
    CommandResult result = std::visit(Visitor{m_broker, now}, command);
    if (!result.accepted())
        return result;
    try {
        store(result.changes, now);
    } catch (const StorageError& error) {
        const Refusal failure{503, error.reason()};
        inform([&](PlatformListener& listener) { listener.commandEnded(command, {}, failure, now); });
        throw;
    }
    return result;
}

// Not read back from the disk: if that failed, a command that has succeeded would be reported as failed.
Trade Platform::tradeAfter(const CommandResult& result) const
{
    if (const Trade* live = m_broker.trade(result.tradeId))
        return *live;
    return *std::ranges::find(result.changes.trades, result.tradeId, &Trade::id);
}

void Platform::store(const ChangeSet& changes, TimeMs now)
{
    if (changes.empty())
        return;
    try {
        Transaction transaction(m_database);
        m_trades.store(changes);
        MetaStore(m_database).setValue(playedToKey, std::to_string(now));
        transaction.commit();
    } catch (const StorageError&) {
        m_broker.undo(changes);
        throw;
    }
}

void Platform::inform(const std::function<void(PlatformListener&)>& call) const
{
    for (PlatformListener* listener : m_listeners)
        call(*listener);
}

void Platform::announce(const ChangeSet& changes, TimeMs now)
{
    if (changes.empty())
        return;
    inform([&](PlatformListener& listener) { listener.changed(changes, now); });
    for (const BrokerEvent& event : changes.events)
        std::visit([this](const auto& happened) { tell(happened); }, event);
}

void Platform::tell(const OrdersChanged& orders)
{
    const std::string message = eventMessage(orders);
    inform(
        [&](PlatformListener& listener) { listener.accountEvent(m_owners.at(orders.accountId), message); });
}

void Platform::tell(const AccountUpdated& update)
{
    const Account& account = update.account;
    const std::string message = eventMessage(account, m_broker.figures(account.id));
    inform([&](PlatformListener& listener) { listener.accountEvent(m_owners.at(account.id), message); });
}

int Platform::digits(std::string_view symbol) const
{
    constexpr int usualDigits = 5;
    const auto position = findSymbol(symbols(), symbol);
    return position ? symbols()[*position].digits : usualDigits;
}

bool Platform::owns(std::string_view userId, std::string_view accountId) const
{
    const auto owner = m_owners.find(accountId);
    return owner != m_owners.end() && owner->second == userId;
}

std::vector<Account> Platform::accountsOf(std::string_view userId) const
{
    std::vector<Account> accounts = m_broker.accounts();
    std::erase_if(accounts, [&](const Account& account) { return !owns(userId, account.id); });
    return accounts;
}

} // namespace practice
