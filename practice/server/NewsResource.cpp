#include "practice/server/NewsResource.h"

#include "practice/server/JsonText.h"
#include "practice/server/NewsCalendar.h"
#include "practice/server/Platform.h"
#include "practice/server/Router.h"

#include <nlohmann/json.hpp>

namespace practice {

namespace {

constexpr int warnMinutesBefore = 15;

} // namespace

void addNewsRoutes(Router& router, const Platform& platform, std::uint64_t seed)
{
    router.add("GET", "/api/news/upcoming", Router::Access::SignedIn,
        [&platform, calendar = NewsCalendar(seed)](const ApiRequest&) {
            const TimeMs now = platform.now();
            auto events = nlohmann::json::array();
            for (const NewsEvent& event : calendar.around(now)) {
                events.push_back({{"id", event.id}, {"eventTime", isoTime(event.time)},
                    {"minutesUntil", minutesUntil(event.time, now)}, {"impact", event.impact},
                    {"currency", event.currency}, {"title", event.title}});
            }
            return ApiReply{
                200, jsonText({{"settings", {{"notifyMin", warnMinutesBefore}}}, {"events", events}}), {}};
        });
}

} // namespace practice
