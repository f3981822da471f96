#pragma once

#include <cstdint>

namespace practice {

class Platform;
class Router;

/// GET /api/news/upcoming: the economic calendar of this seed.
void addNewsRoutes(Router& router, const Platform& platform, std::uint64_t seed);

} // namespace practice
