#include "practice/server/CandlesResource.h"

#include "practice/server/Platform.h"
#include "practice/server/QueryReader.h"
#include "practice/server/Router.h"
#include "practice/server/WireRecords.h"

namespace practice {

namespace {

constexpr int usualBars = 1500;
constexpr int mostBars = 5000;

std::string timeframeKeys()
{
    std::string keys;
    for (const Timeframe timeframe : allTimeframes)
        keys.append(keys.empty() ? "" : ", ").append(timeframeKey(timeframe));
    return keys;
}

} // namespace

void addCandlesRoutes(Router& router, Platform& platform)
{
    router.add("GET", "/api/candles", Router::Access::SignedIn, [&platform](const ApiRequest& request) {
        const auto symbol = findSymbol(platform.symbols(), requiredItem(request.target, "symbol"));
        const auto timeframe = timeframeFromKey(requiredItem(request.target, "timeframe"));
        const int limit = countItem(request.target, "limit", usualBars, mostBars);
        if (!timeframe)
            throw ApiError{400, "This timeframe is not known; use one of " + timeframeKeys() + '.'};
        if (!symbol)
            throw ApiError{404, "This symbol is not traded here."};
        const TimeMs now = platform.now();
        const auto bars = platform.market().bars(*symbol, *timeframe, static_cast<std::size_t>(limit), now);
        platform.inform(
            [&](PlatformListener& listener) { listener.barsSent(*symbol, *timeframe, bars, now); });
        return ApiReply{200, candleArray(bars, platform.symbols()[*symbol].digits), {}};
    });
}

} // namespace practice
