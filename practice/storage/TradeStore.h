#pragma once

#include "practice/core/broker/ChangeSet.h"
#include "practice/core/broker/Records.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace practice {

class Database;

/// Accounts and trades, live and finished.
class TradeStore final {
public:
    explicit TradeStore(Database& database);

    /// Gives a user accounts; they are listed in this order, behind those that are there already. To be
    /// called within a transaction.
    void addAccounts(std::string_view userId, const std::vector<Account>& accounts);

    /// Stores what a command or a price caused. To be called within a transaction.
    void store(const ChangeSet& changes);

    /// What the broker starts from. Throws StorageError for a row that cannot be read.
    [[nodiscard]] BrokerState load();
    /// The last moment that a trade or the day of an account tells of; 0 without any.
    [[nodiscard]] TimeMs latestMoment();
    /// The user of every account.
    [[nodiscard]] std::map<std::string, std::string, std::less<>> accountOwners();

    /// What came to an end, the last first: closed positions, changes of the balance, and trades that were
    /// cancelled, except by the trader.
    [[nodiscard]] std::vector<Trade> history(std::string_view accountId, int limit);

    /// The statement behind history().
    [[nodiscard]] static std::string historyQuery();

private:
    void storeAccount(const Account& account);
    void storeTrade(const Trade& trade);

    Database& m_database;
};

} // namespace practice
