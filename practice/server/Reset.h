#pragma once

#include "practice/core/broker/Records.h"

#include <optional>
#include <string>
#include <vector>

namespace practice {

class Database;

/// Begins the account with this id, or the only one whose id begins so (four characters at least), anew;
/// without an id all of them. Needs no market: what is open is cancelled at no cost. Returns the accounts as
/// they are then. Throws UsageError when no account fits or several do, StorageError.
[[nodiscard]] std::vector<Account> resetAccounts(
    Database& database, const std::optional<std::string>& id, TimeMs now);

/// Cancels everything that is open in any account, at no cost. Throws StorageError.
void cancelOpenTrades(Database& database, TimeMs now);

/// What a person calls the account: "Wallet", "Demo" or the name of its plan.
[[nodiscard]] std::string accountName(const Account& account);

} // namespace practice
