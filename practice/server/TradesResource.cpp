#include "practice/server/TradesResource.h"

#include "practice/server/BodyReader.h"
#include "practice/server/JsonText.h"
#include "practice/server/Platform.h"
#include "practice/server/QueryReader.h"
#include "practice/server/Router.h"
#include "practice/server/WireRecords.h"

#include <string>

namespace practice {

namespace {

constexpr int historyRows = 5000;

ApiReply tradeList(const Platform& platform, const std::vector<Trade>& trades)
{
    auto records = nlohmann::json::array();
    for (const Trade& trade : trades)
        records.push_back(tradeRecord(trade, platform.digits(trade.symbol)));
    return {200, jsonText(records), {}};
}

/// The id of the account whose list is asked for. Moves to the present first, so that the list is of now.
std::string accountOf(Platform& platform, const ApiRequest& request)
{
    platform.catchUp();
    std::string accountId = requiredItem(request.target, "accountId");
    if (!platform.owns(request.userId, accountId))
        throw ApiError{404, "You have no account with this accountId."};
    return accountId;
}

ApiReply tradeReply(const Platform& platform, const Trade& trade)
{
    return {200, jsonText(tradeRecord(trade, platform.digits(trade.symbol))), {}};
}

// Somebody else's trade does not exist for this user; an unknown id is left to the broker.
void requireOwn(const Platform& platform, const ApiRequest& request)
{
    const Trade* trade = platform.broker().trade(request.parameter);
    if (trade && !platform.owns(request.userId, trade->accountId))
        throw ApiError{404, "There is no such trade."};
}

// The body of close and cancel carries nothing, but a broken one hints at a broken client.
void requireObject(const std::string& body)
{
    if (!body.empty())
        static_cast<void>(BodyReader(body));
}

ApiReply place(Platform& platform, const ApiRequest& request)
{
    const BodyReader body(request.body);
    PlaceRequest order;
    order.accountId = body.text("accountId");
    order.symbol = body.text("symbol");
    order.orderKind = body.text("orderKind");
    order.type = body.optionalText("type").value_or("");
    order.lots = body.number("lotSize");
    order.pendingPrice = body.optionalNumber("pendingPrice");
    order.stopLoss = body.optionalNumber("stopLoss");
    order.takeProfit = body.optionalNumber("takeProfit");
    order.comment = body.optionalText("comment").value_or("");
    if (!platform.owns(request.userId, order.accountId))
        throw ApiError{404, "You have no account with this accountId."};
    return tradeReply(platform, platform.execute(order));
}

ApiReply close(Platform& platform, const ApiRequest& request)
{
    requireObject(request.body);
    requireOwn(platform, request);
    return tradeReply(platform, platform.execute(CloseCommand{request.parameter}));
}

ApiReply cancel(Platform& platform, const ApiRequest& request)
{
    requireObject(request.body);
    requireOwn(platform, request);
    return tradeReply(platform, platform.execute(CancelCommand{request.parameter}));
}

ApiReply modify(Platform& platform, const ApiRequest& request)
{
    const BodyReader body(request.body);
    const ModifyRequest change{body.optionalNumber("stopLoss"), body.optionalNumber("takeProfit"),
        body.optionalNumber("pendingPrice")};
    requireOwn(platform, request);
    return tradeReply(platform, platform.execute(ModifyCommand{request.parameter, change}));
}

} // namespace

void addTradesRoutes(Router& router, Platform& platform)
{
    constexpr auto signedIn = Router::Access::SignedIn;
    router.add("GET", "/api/trades/open", signedIn, [&platform](const ApiRequest& request) {
        const std::string account = accountOf(platform, request);
        const std::vector<Trade> trades = platform.broker().openTrades(account);
        platform.inform(
            [&](PlatformListener& listener) { listener.positionsSent(account, trades, platform.now()); });
        return tradeList(platform, trades);
    });
    router.add("GET", "/api/trades/pending", signedIn, [&platform](const ApiRequest& request) {
        const std::string account = accountOf(platform, request);
        platform.inform([&](PlatformListener& listener) { listener.ordersSent(account, platform.now()); });
        return tradeList(platform, platform.broker().pendingOrders(account));
    });
    router.add("GET", "/api/trades/history", signedIn, [&platform](const ApiRequest& request) {
        const int limit = countItem(request.target, "limit", historyRows, historyRows);
        return tradeList(platform, platform.trades().history(accountOf(platform, request), limit));
    });
    const auto command = [&](const char* method, const char* pattern, auto handler) {
        router.add(method, pattern, signedIn,
            [&platform, handler](const ApiRequest& request) { return handler(platform, request); });
    };
    command("POST", "/api/trades/place", place);
    command("POST", "/api/trades/close/{id}", close);
    command("POST", "/api/trades/cancel/{id}", cancel);
    command("PUT", "/api/trades/modify/{id}", modify);
}

} // namespace practice
