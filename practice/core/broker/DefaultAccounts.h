#pragma once

#include "practice/core/broker/IdSource.h"
#include "practice/core/broker/Records.h"

namespace practice {

/// The accounts of a fresh practice platform, in list order: a wallet (2 500 USD, cannot trade), a demo
/// account (100 000 USD, 1:100), a funded account (50 000 USD, 1:50) and a two-step challenge in its first
/// phase (25 000 USD, 1:100). Their day starts with the UTC day that holds `now`.
[[nodiscard]] std::vector<Account> defaultAccounts(const IdSource& ids, TimeMs now);

} // namespace practice
