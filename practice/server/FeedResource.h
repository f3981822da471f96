#pragma once

namespace practice {

class Router;

/// /ws/terminal for those who come without a WebSocket: an answer that says what is missing.
void addFeedRoutes(Router& router);

} // namespace practice
