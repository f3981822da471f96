#pragma once

#include "practice/server/Target.h"

#include <functional>
#include <string>
#include <string_view>

namespace practice {

/// A request as the resources see it: routed, and signed in where the route asks for it.
struct ApiRequest {
    Target target;
    std::string parameter; ///< what stands for {id} in the route; empty when the route has none
    std::string body;
    std::string client; ///< who asks, as SignInBrake::clientOf() names it
    std::string userId; ///< empty on routes that everybody may use
};

/// An answer; the body is JSON text.
struct ApiReply {
    int status = 200;
    std::string body;
    std::string allow;                 ///< methods for the Allow header of a 405
    std::string webSocketVersion = {}; ///< the one spoken here, for a handshake of another
};

/// Takes the answer of a request: once, now or later, on the server's thread.
using Respond = std::function<void(ApiReply)>;

/// Thrown by a resource that does not carry out a request; nothing has changed then.
struct ApiError {
    int status;
    std::string message; ///< tells a person what to change
};

/// {"message": ...}
[[nodiscard]] ApiReply errorReply(int status, std::string_view message);

} // namespace practice
