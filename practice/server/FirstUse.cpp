#include "practice/server/FirstUse.h"

#include "practice/core/broker/DefaultAccounts.h"
#include "practice/server/Credentials.h"
#include "practice/storage/Database.h"
#include "practice/storage/TradeStore.h"
#include "practice/storage/UserStore.h"

namespace practice {

void prepareFirstUse(Database& database, TimeMs now)
{
    UserStore users(database);
    if (users.byEmail(practiceEmail))
        return;
    UuidSource ids = UuidSource::fresh();
    const User trader{ids(), practiceEmail, "Practice Trader", hashPassword(practicePassword)};
    Transaction transaction(database);
    users.add(trader);
    TradeStore(database).addAccounts(trader.id, defaultAccounts(ids, now));
    transaction.commit();
}

} // namespace practice
