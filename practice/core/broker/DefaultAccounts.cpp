#include "practice/core/broker/DefaultAccounts.h"

namespace practice {
namespace {

constexpr Cents dollars(Cents amount)
{
    return amount * 100;
}

} // namespace

std::vector<Account> defaultAccounts(const IdSource& ids, TimeMs now)
{
    const auto make = [&](AccountKind kind, Cents balance, int leverage) {
        Account account;
        account.id = ids();
        account.kind = kind;
        account.balance = account.initialBalance = account.dayStartEquity = balance;
        account.leverage = leverage;
        account.dayIndex = floorDivide(now, dayMs);
        return account;
    };
    std::vector<Account> accounts{
        make(AccountKind::Wallet, dollars(2'500), 1),
        make(AccountKind::Demo, dollars(100'000), 100),
        make(AccountKind::Plan, dollars(50'000), 50),
        make(AccountKind::Plan, dollars(25'000), 100),
    };
    accounts[2].plan = {"Practice 50K", 2};
    accounts[2].phase = 2;
    accounts[2].isFunded = true;
    accounts[3].plan = {"Practice 25K", 2};
    return accounts;
}

} // namespace practice
