#include "practice/server/FeedResource.h"

#include "practice/server/Router.h"

namespace practice {

void addFeedRoutes(Router& router)
{
    router.add("GET", "/ws/terminal", Router::Access::Everybody, [](const ApiRequest&) -> ApiReply {
        throw ApiError{400, "This is the live feed; connect to it with a WebSocket."};
    });
}

} // namespace practice
