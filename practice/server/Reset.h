#pragma once

#include "practice/core/broker/Records.h"

#include <optional>
#include <string>
#include <vector>

namespace practice {

class Database;

/// Begins an account anew: the one with this id, or the only one whose id begins with it (at least four
/// characters); without an id, all of them. Needs no market, since open trades are cancelled at no cost.
/// Returns the accounts as they are afterwards. Throws UsageError when no account fits or several do,
/// StorageError.
[[nodiscard]] std::vector<Account> resetAccounts(
    Database& database, const std::optional<std::string>& id, TimeMs now);

/// Cancels everything that is open in any account, at no cost. Throws StorageError.
void cancelOpenTrades(Database& database, TimeMs now);

/// What a person calls the account: "Wallet", "Demo" or the name of its plan.
[[nodiscard]] std::string accountName(const Account& account);

} // namespace practice
