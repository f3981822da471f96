#pragma once

namespace practice {

class Router;

/// GET /api/settings/public: what a terminal may know before anybody signed in.
void addSettingsRoutes(Router& router);

} // namespace practice
