#include "practice/storage/TradeStore.h"

#include "practice/core/broker/RecordText.h"
#include "practice/storage/Database.h"
#include "practice/storage/StorageError.h"

#include <algorithm>
#include <optional>

namespace practice {

namespace {

constexpr std::string_view tradeColumns
    = "id, account_id, symbol, side, order_kind, status, lots, entry_price, exit_price, pending_price,"
      " stop_loss, take_profit, pnl, margin, swap, commission, created_at, updated_at, closed_at,"
      " close_reason, comment";

std::string selectTrades(std::string_view rest)
{
    return "SELECT " + std::string(tradeColumns) + " FROM trades " + std::string(rest);
}

template <typename T> T word(const std::optional<T>& value, const std::string& text)
{
    if (!value)
        throw StorageError("holds the unknown word \"" + text + '"');
    return *value;
}

Trade readTrade(const Statement& row)
{
    Trade trade;
    trade.id = row.text(0);
    trade.accountId = row.text(1);
    trade.symbol = row.text(2);
    trade.side = word(sideFromText(row.text(3)), row.text(3));
    trade.orderKind = word(orderKindFromText(row.text(4)), row.text(4));
    trade.status = word(tradeStatusFromText(row.text(5)), row.text(5));
    trade.lots = row.integer(6);
    trade.entryPrice = row.real(7);
    trade.exitPrice = row.real(8);
    trade.pendingPrice = row.real(9);
    trade.stopLoss = row.real(10);
    trade.takeProfit = row.real(11);
    trade.pnl = row.integer(12);
    trade.margin = row.integer(13);
    trade.swap = row.integer(14);
    trade.commission = row.integer(15);
    trade.createdAt = row.integer(16);
    trade.updatedAt = row.integer(17);
    trade.closedAt = row.integer(18);
    trade.closeReason = word(closeReasonFromText(row.text(19)), row.text(19));
    trade.comment = row.text(20);
    return trade;
}

Account readAccount(const Statement& row)
{
    Account account;
    account.id = row.text(0);
    account.kind = word(accountKindFromText(row.text(1)), row.text(1));
    account.plan.name = row.text(2);
    account.plan.steps = static_cast<int>(row.integer(3));
    account.phase = static_cast<int>(row.integer(4));
    account.isFunded = row.integer(5) != 0;
    account.status = word(accountStatusFromText(row.text(6)), row.text(6));
    account.balance = row.integer(7);
    account.initialBalance = row.integer(8);
    account.leverage = static_cast<int>(row.integer(9));
    account.dayStartEquity = row.integer(10);
    account.dayIndex = row.integer(11);
    return account;
}

} // namespace

TradeStore::TradeStore(Database& database)
    : m_database(database)
{
}

void TradeStore::addAccounts(std::string_view userId, const std::vector<Account>& accounts)
{
    for (const Account& account : accounts) {
        m_database
            .statement("INSERT INTO accounts(id, user_id, position, kind, plan_name, plan_steps, phase,"
                       " is_funded, status, balance, initial_balance, leverage, day_start_equity, day_index)"
                       " VALUES(?1, ?2, (SELECT coalesce(max(position), 0) + 1 FROM accounts), ?3, ?4, ?5, 1,"
                       " 0, 'ACTIVE', 0, ?6, ?7, 0, 0)")
            .bind(1, account.id)
            .bind(2, userId)
            .bind(3, toText(account.kind))
            .bind(4, account.plan.name)
            .bind(5, account.plan.steps)
            .bind(6, account.initialBalance)
            .bind(7, account.leverage)
            .run();
        storeAccount(account);
    }
}

void TradeStore::store(const ChangeSet& changes)
{
    for (const Account& account : changes.accounts)
        storeAccount(account);
    for (const Trade& trade : changes.trades)
        storeTrade(trade);
}

void TradeStore::storeAccount(const Account& account)
{
    m_database
        .statement("UPDATE accounts SET phase = ?2, is_funded = ?3, status = ?4, balance = ?5,"
                   " initial_balance = ?6, day_start_equity = ?7, day_index = ?8 WHERE id = ?1")
        .bind(1, account.id)
        .bind(2, account.phase)
        .bind(3, account.isFunded)
        .bind(4, toText(account.status))
        .bind(5, account.balance)
        .bind(6, account.initialBalance)
        .bind(7, account.dayStartEquity)
        .bind(8, account.dayIndex)
        .run();
}

void TradeStore::storeTrade(const Trade& trade)
{
    static const std::string upsert = "INSERT INTO trades(" + std::string(tradeColumns)
        + ") VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17, ?18, ?19,"
          " ?20, ?21) ON CONFLICT(id) DO UPDATE SET status = ?6, entry_price = ?8, exit_price = ?9,"
          " pending_price = ?10, stop_loss = ?11, take_profit = ?12, pnl = ?13, margin = ?14, swap = ?15,"
          " commission = ?16, created_at = ?17, updated_at = ?18, closed_at = ?19, close_reason = ?20";
    m_database.statement(upsert)
        .bind(1, trade.id)
        .bind(2, trade.accountId)
        .bind(3, trade.symbol)
        .bind(4, toText(trade.side))
        .bind(5, toText(trade.orderKind))
        .bind(6, toText(trade.status))
        .bind(7, trade.lots)
        .bind(8, trade.entryPrice)
        .bind(9, trade.exitPrice)
        .bind(10, trade.pendingPrice)
        .bind(11, trade.stopLoss)
        .bind(12, trade.takeProfit)
        .bind(13, trade.pnl)
        .bind(14, trade.margin)
        .bind(15, trade.swap)
        .bind(16, trade.commission)
        .bind(17, trade.createdAt)
        .bind(18, trade.updatedAt)
        .bind(19, trade.closedAt)
        .bind(20, toText(trade.closeReason))
        .bind(21, trade.comment)
        .run();
}

BrokerState TradeStore::load()
{
    BrokerState state;
    Statement& accounts
        = m_database.statement("SELECT id, kind, plan_name, plan_steps, phase, is_funded, status, balance, "
                               "initial_balance, leverage,"
                               " day_start_equity, day_index FROM accounts ORDER BY position");
    while (accounts.step())
        state.accounts.push_back(readAccount(accounts));
    Statement& trades = m_database.statement(
        selectTrades("WHERE status IN ('OPEN', 'PENDING') ORDER BY created_at, rowid"));
    while (trades.step())
        state.liveTrades.push_back(readTrade(trades));
    return state;
}

TimeMs TradeStore::latestMoment()
{
    TimeMs latest = 0;
    Statement& trades = m_database.statement("SELECT coalesce(max(updated_at), 0) FROM trades");
    while (trades.step())
        latest = trades.integer(0);
    Statement& days = m_database.statement("SELECT coalesce(max(day_index), 0) FROM accounts");
    while (days.step())
        latest = std::max(latest, days.integer(0) * dayMs);
    return latest;
}

std::map<std::string, std::string, std::less<>> TradeStore::accountOwners()
{
    std::map<std::string, std::string, std::less<>> owners;
    Statement& query = m_database.statement("SELECT id, user_id FROM accounts");
    while (query.step())
        owners.emplace(query.text(0), query.text(1));
    return owners;
}

std::string TradeStore::historyQuery()
{
    // The condition in parentheses is that of the index, word for word, or the index would not be used.
    return selectTrades(
        "WHERE account_id = ?1 AND (status = 'CLOSED' OR (status = 'CANCELLED' AND close_reason <> 'MANUAL'))"
        " ORDER BY closed_at DESC, rowid DESC LIMIT ?2");
}

std::vector<Trade> TradeStore::history(std::string_view accountId, int limit)
{
    static const std::string sql = historyQuery();
    std::vector<Trade> trades;
    Statement& query = m_database.statement(sql);
    query.bind(1, accountId).bind(2, limit);
    while (query.step())
        trades.push_back(readTrade(query));
    return trades;
}

} // namespace practice
