#pragma once

namespace practice {

class Platform;
class Router;

/// GET /api/candles?symbol=&timeframe=[&limit=]: bars of mid prices, oldest first, the last one forming.
void addCandlesRoutes(Router& router, Platform& platform);

} // namespace practice
