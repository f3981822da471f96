#pragma once

namespace practice {

class Platform;
class Router;

/// /api/trades/: the lists "open", "pending" (oldest first) and "history" (last closed first) of an account,
/// and "place", "close/{id}", "cancel/{id}", "modify/{id}", each of which answers with the trade's record.
void addTradesRoutes(Router& router, Platform& platform);

} // namespace practice
