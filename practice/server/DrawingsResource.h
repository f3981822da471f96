#pragma once

namespace practice {

class Platform;
class Router;

/// /api/drawings: what a trader drew on the charts of a symbol, kept per account (an absent account is a
/// place of its own).
void addDrawingsRoutes(Router& router, Platform& platform);

} // namespace practice
