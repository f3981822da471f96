#include "practice/server/AccountsResource.h"

#include "practice/server/JsonText.h"
#include "practice/server/Platform.h"
#include "practice/server/Router.h"
#include "practice/server/WireRecords.h"

#include <nlohmann/json.hpp>

namespace practice {

void addAccountsRoutes(Router& router, Platform& platform)
{
    router.add("GET", "/api/accounts", Router::Access::SignedIn, [&platform](const ApiRequest& request) {
        platform.catchUp();
        auto records = nlohmann::json::array();
        const std::vector<Account> accounts = platform.accountsOf(request.userId);
        platform.inform([&](PlatformListener& listener) { listener.accountsSent(accounts, platform.now()); });
        for (const Account& account : accounts)
            records.push_back(accountRecord(account, platform.broker().figures(account.id)));
        return ApiReply{200, jsonText(records), {}};
    });
}

} // namespace practice
