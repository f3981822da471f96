#include "practice/core/broker/Ledger.h"

#include <algorithm>
#include <stdexcept>
#include <tuple>

namespace practice {
namespace {

// Ids break ties, so that the order is the same after a restart.
bool isOlder(const LiveTrade* left, const LiveTrade* right)
{
    return std::tie(left->record.createdAt, left->record.id)
        < std::tie(right->record.createdAt, right->record.id);
}

void insertSorted(std::vector<LiveTrade*>& list, LiveTrade& trade)
{
    list.insert(std::upper_bound(list.begin(), list.end(), &trade, isOlder), &trade);
}

void removeSorted(std::vector<LiveTrade*>& list, LiveTrade& trade)
{
    const auto place = std::lower_bound(list.begin(), list.end(), &trade, isOlder);
    if (place != list.end() && *place == &trade)
        list.erase(place);
}

} // namespace

Ledger::Ledger(const std::vector<SymbolSpec>& symbols, BrokerState state)
    : m_symbols(symbols)
    , m_open(symbols.size() + 1)
    , m_pending(symbols.size() + 1)
{
    for (Account& account : state.accounts) {
        auto live = std::make_unique<LiveAccount>();
        live->record = std::move(account);
        if (!m_accountById.emplace(live->record.id, live.get()).second)
            throw std::invalid_argument("The account " + live->record.id + " exists twice.");
        m_accounts.push_back(std::move(live));
    }
    for (Trade& trade : state.liveTrades) {
        if (!isLive(trade))
            throw std::invalid_argument("The trade " + trade.id + " is finished, not live.");
        if (!findAccount(trade.accountId))
            throw std::invalid_argument("The trade " + trade.id + " belongs to no known account.");
        if (findTrade(trade.id))
            throw std::invalid_argument("The trade " + trade.id + " exists twice.");
        insert(std::move(trade));
    }
}

LiveAccount* Ledger::findAccount(std::string_view id) const
{
    const auto found = m_accountById.find(std::string(id));
    return found == m_accountById.end() ? nullptr : found->second;
}

LiveTrade* Ledger::findTrade(std::string_view id) const
{
    const auto found = m_tradeById.find(std::string(id));
    return found == m_tradeById.end() ? nullptr : found->second.get();
}

const std::vector<LiveTrade*>& Ledger::openOf(std::size_t symbol) const
{
    return m_open.at(symbol);
}

const std::vector<LiveTrade*>& Ledger::pendingOf(std::size_t symbol) const
{
    return m_pending.at(symbol);
}

BrokerState Ledger::state() const
{
    BrokerState result;
    for (const auto& account : m_accounts) {
        result.accounts.push_back(account->record);
        for (const LiveTrade* trade : account->trades)
            result.liveTrades.push_back(trade->record);
    }
    return result;
}

Account& Ledger::change(LiveAccount& account)
{
    const auto sameId = [&account](const Account& before) { return before.id == account.record.id; };
    if (std::none_of(m_accountsBefore.begin(), m_accountsBefore.end(), sameId))
        m_accountsBefore.push_back(account.record);
    return account.record;
}

Trade& Ledger::change(LiveTrade& trade)
{
    remember(trade.record, false);
    return trade.record;
}

LiveTrade& Ledger::add(Trade trade)
{
    remember(trade, true);
    return insert(std::move(trade));
}

void Ledger::replace(LiveTrade& trade, Trade record)
{
    remember(trade.record, false);
    unindex(trade);
    trade.record = std::move(record);
    index(trade);
}

void Ledger::finish(LiveTrade& trade, Trade record)
{
    remember(trade.record, false);
    erase(trade);
    m_finished.insert_or_assign(record.id, std::move(record));
}

void Ledger::addFinished(Trade record)
{
    remember(record, true);
    m_finished.insert_or_assign(record.id, std::move(record));
}

void Ledger::revalue(LiveTrade& trade, Cents pnl)
{
    trade.owner->openProfit += pnl - trade.record.pnl;
    trade.record.pnl = pnl;
}

ChangeSet Ledger::take()
{
    ChangeSet changes;
    for (const Account& before : m_accountsBefore)
        changes.accounts.push_back(m_accountById.at(before.id)->record);
    for (const std::string& id : m_touched) {
        const auto finished = m_finished.find(id);
        changes.trades.push_back(
            finished == m_finished.end() ? m_tradeById.at(id)->record : std::move(finished->second));
    }
    changes.events = std::move(m_events);
    changes.accountsBefore = std::move(m_accountsBefore);
    changes.tradesBefore = std::move(m_tradesBefore);
    m_accountsBefore.clear();
    m_tradesBefore.clear();
    m_touched.clear();
    m_touchedSet.clear();
    m_finished.clear();
    m_events.clear();
    return changes;
}

void Ledger::undo(const ChangeSet& changes)
{
    for (const Trade& after : changes.trades) {
        if (LiveTrade* trade = findTrade(after.id))
            erase(*trade);
    }
    for (const Trade& before : changes.tradesBefore)
        insert(before);
    for (const Account& before : changes.accountsBefore)
        m_accountById.at(before.id)->record = before;
}

void Ledger::remember(const Trade& trade, bool isNew)
{
    if (!m_touchedSet.insert(trade.id).second)
        return;
    m_touched.push_back(trade.id);
    if (!isNew)
        m_tradesBefore.push_back(trade);
}

void Ledger::index(LiveTrade& trade)
{
    insertSorted(trade.owner->trades, trade);
    if (trade.record.status == TradeStatus::Open) {
        insertSorted(m_open[trade.symbol], trade);
        trade.owner->openProfit += trade.record.pnl;
        trade.owner->margin += trade.record.margin;
    } else {
        insertSorted(m_pending[trade.symbol], trade);
    }
}

void Ledger::unindex(LiveTrade& trade)
{
    removeSorted(trade.owner->trades, trade);
    if (trade.record.status == TradeStatus::Open) {
        removeSorted(m_open[trade.symbol], trade);
        trade.owner->openProfit -= trade.record.pnl;
        trade.owner->margin -= trade.record.margin;
    } else {
        removeSorted(m_pending[trade.symbol], trade);
    }
}

LiveTrade& Ledger::insert(Trade trade)
{
    auto live = std::make_unique<LiveTrade>();
    live->record = std::move(trade);
    live->owner = m_accountById.at(live->record.accountId);
    live->symbol = findSymbol(m_symbols, live->record.symbol).value_or(m_symbols.size());
    LiveTrade& result = *live;
    m_tradeById.insert_or_assign(result.record.id, std::move(live));
    index(result);
    return result;
}

void Ledger::erase(LiveTrade& trade)
{
    unindex(trade);
    const std::string id = trade.record.id; // erasing by a key inside the erased element would be unsafe
    m_tradeById.erase(id);
}

} // namespace practice
