#include "practice/server/Reset.h"

#include "practice/core/broker/Broker.h"
#include "practice/server/Options.h"
#include "practice/storage/Database.h"
#include "practice/storage/StorageError.h"
#include "practice/storage/TradeStore.h"

#include <stdexcept>

namespace practice {

namespace {

constexpr std::size_t shortestBeginning = 4;

Broker loadBroker(TradeStore& store)
{
    try {
        return Broker(symbolCatalog(), UuidSource::fresh(), store.load());
    } catch (const std::invalid_argument& error) {
        throw StorageError(std::string("the stored accounts contradict themselves: ") + error.what());
    }
}

bool isMeant(const Account& account, const std::string& id)
{
    return account.id == id || (id.size() >= shortestBeginning && account.id.starts_with(id));
}

std::vector<Account> chosen(const Broker& broker, const std::optional<std::string>& id)
{
    std::vector<Account> all = broker.accounts();
    if (!id)
        return all;
    std::vector<Account> meant;
    std::string known;
    for (const Account& account : all) {
        if (isMeant(account, *id))
            meant.push_back(account);
        known += (known.empty() ? "" : ", ") + account.id + " (" + accountName(account) + ')';
    }
    if (meant.size() != 1) {
        throw UsageError(std::string(meant.empty() ? "no account has" : "several accounts have")
            + " the id \"" + *id + "\"; there are " + known);
    }
    return meant;
}

} // namespace

std::vector<Account> resetAccounts(Database& database, const std::optional<std::string>& id, TimeMs now)
{
    TradeStore store(database);
    Broker broker = loadBroker(store);
    std::vector<Account> accounts = chosen(broker, id);
    Transaction transaction(database);
    for (Account& account : accounts) {
        store.store(broker.reset(account.id, now));
        account = *broker.account(account.id);
    }
    transaction.commit();
    return accounts;
}

void cancelOpenTrades(Database& database, TimeMs now)
{
    TradeStore store(database);
    Broker broker = loadBroker(store);
    Transaction transaction(database);
    store.store(broker.cancelEverything(now));
    transaction.commit();
}

std::string accountName(const Account& account)
{
    switch (account.kind) {
    case AccountKind::Wallet:
        return "Wallet";
    case AccountKind::Demo:
        return "Demo";
    case AccountKind::Plan:
        break;
    }
    return account.plan.name;
}

} // namespace practice
