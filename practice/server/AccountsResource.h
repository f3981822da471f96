#pragma once

namespace practice {

class Platform;
class Router;

/// GET /api/accounts: the trader's accounts in list order.
void addAccountsRoutes(Router& router, Platform& platform);

} // namespace practice
