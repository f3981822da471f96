#include "practice/server/SettingsResource.h"

#include "practice/server/JsonText.h"
#include "practice/server/Router.h"

#include <nlohmann/json.hpp>

namespace practice {

void addSettingsRoutes(Router& router)
{
    // A terminal stores any address it finds here and sends the next password there. A terminal that asks has
    // reached us already, so there is nothing to correct, and an address guessed from the Host header could
    // turn https into http behind a proxy. An empty one leaves the terminal where it is.
    router.add("GET", "/api/settings/public", Router::Access::Everybody, [](const ApiRequest&) {
        return ApiReply{200, jsonText({{"settings", {{"terminalServerUrl", ""}}}}), {}};
    });
}

} // namespace practice
