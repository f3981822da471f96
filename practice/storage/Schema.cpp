#include "practice/storage/Schema.h"

namespace practice {

const std::vector<std::string>& schemaMigrations()
{
    // Amounts are whole cents, volumes hundredths of a lot, times milliseconds since 1970 (UTC).
    static const std::vector<std::string> steps{R"sql(
        CREATE TABLE meta(
            key TEXT PRIMARY KEY,
            value TEXT NOT NULL
        ) STRICT, WITHOUT ROWID;

        CREATE TABLE users(
            id TEXT PRIMARY KEY,
            email TEXT NOT NULL COLLATE NOCASE UNIQUE,
            name TEXT NOT NULL,
            password_hash TEXT NOT NULL
        ) STRICT, WITHOUT ROWID;

        CREATE TABLE tokens(
            hash TEXT PRIMARY KEY,
            user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
            created_at INTEGER NOT NULL
        ) STRICT, WITHOUT ROWID;
        CREATE INDEX tokens_by_user ON tokens(user_id, created_at);

        CREATE TABLE accounts(
            id TEXT PRIMARY KEY,
            user_id TEXT NOT NULL REFERENCES users(id),
            position INTEGER NOT NULL,
            kind TEXT NOT NULL,
            plan_name TEXT NOT NULL,
            plan_steps INTEGER NOT NULL,
            phase INTEGER NOT NULL,
            is_funded INTEGER NOT NULL,
            status TEXT NOT NULL,
            balance INTEGER NOT NULL,
            initial_balance INTEGER NOT NULL,
            leverage INTEGER NOT NULL,
            day_start_equity INTEGER NOT NULL,
            day_index INTEGER NOT NULL
        ) STRICT, WITHOUT ROWID;

        CREATE TABLE trades(
            id TEXT PRIMARY KEY,
            account_id TEXT NOT NULL REFERENCES accounts(id),
            symbol TEXT NOT NULL,
            side TEXT NOT NULL,
            order_kind TEXT NOT NULL,
            status TEXT NOT NULL,
            lots INTEGER NOT NULL,
            entry_price REAL NOT NULL,
            exit_price REAL NOT NULL,
            pending_price REAL NOT NULL,
            stop_loss REAL NOT NULL,
            take_profit REAL NOT NULL,
            pnl INTEGER NOT NULL,
            margin INTEGER NOT NULL,
            swap INTEGER NOT NULL,
            commission INTEGER NOT NULL,
            created_at INTEGER NOT NULL,
            updated_at INTEGER NOT NULL,
            closed_at INTEGER NOT NULL,
            close_reason TEXT NOT NULL,
            comment TEXT NOT NULL
        ) STRICT;
        CREATE INDEX trades_live ON trades(created_at) WHERE status IN ('OPEN', 'PENDING');
        CREATE INDEX trades_closed ON trades(account_id, closed_at) WHERE status = 'CLOSED';

        CREATE TABLE drawings(
            number INTEGER PRIMARY KEY,
            id TEXT NOT NULL UNIQUE,
            user_id TEXT NOT NULL REFERENCES users(id) ON DELETE CASCADE,
            account_id TEXT NOT NULL,
            symbol TEXT NOT NULL,
            tool TEXT NOT NULL,
            color TEXT NOT NULL,
            points TEXT NOT NULL
        ) STRICT;
        CREATE INDEX drawings_by_chart ON drawings(user_id, symbol, account_id);
    )sql",
        R"sql(
        DROP INDEX trades_closed;
        CREATE INDEX trades_finished ON trades(account_id, closed_at)
            WHERE status = 'CLOSED' OR (status = 'CANCELLED' AND close_reason <> 'MANUAL');
    )sql"};
    return steps;
}

} // namespace practice
