#pragma once

namespace practice {

class Router;

/// Answers plain HTTP requests for /ws/terminal, and says that a WebSocket is needed.
void addFeedRoutes(Router& router);

} // namespace practice
