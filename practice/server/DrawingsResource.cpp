#include "practice/server/DrawingsResource.h"

#include "practice/server/BodyReader.h"
#include "practice/server/Credentials.h"
#include "practice/server/JsonText.h"
#include "practice/server/Platform.h"
#include "practice/server/QueryReader.h"
#include "practice/server/Router.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace practice {

using nlohmann::json;

namespace {

constexpr std::size_t mostDrawings = 500;
constexpr const char* usualColor = "#e0e0e0";

json drawingRecord(const Drawing& drawing)
{
    return {{"id", drawing.id}, {"symbol", drawing.symbol},
        {"accountId", drawing.accountId.empty() ? json() : json(drawing.accountId)},
        {"toolType", drawing.tool}, {"points", json::parse(drawing.points)},
        {"style", {{"color", drawing.color}}}};
}

std::size_t pointsOf(std::string_view tool)
{
    if (tool == "hline" || tool == "vline")
        return 1;
    if (tool == "trendline" || tool == "rectangle" || tool == "fibonacci")
        return 2;
    throw ApiError{400, "\"toolType\" must be hline, vline, trendline, rectangle or fibonacci."};
}

// Times are 64-bit and would lose digits in a JSON number, so they travel as texts; numbers are taken too.
std::optional<std::int64_t> timeOf(const json& value)
{
    if (value.is_number_integer())
        return value.get<std::int64_t>();
    if (!value.is_string())
        return std::nullopt;
    const auto& text = value.get_ref<const std::string&>();
    std::int64_t time = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, time);
    return error == std::errc() && stop == end ? std::optional(time) : std::nullopt;
}

std::string readPoints(const BodyReader& body, std::size_t count)
{
    const json* points = body.find("points");
    if (!points || !points->is_array() || points->size() != count)
        throw ApiError{400, "\"points\" must be an array of " + std::to_string(count) + " for this tool."};
    json checked = json::array();
    for (const json& point : *points) {
        const bool complete = point.is_object() && point.contains("time") && point.contains("price");
        const auto time = complete ? timeOf(point["time"]) : std::nullopt;
        const auto price = complete ? numberOf(point["price"]) : std::nullopt;
        if (!time || !price)
            throw ApiError{400, "Each point needs a \"time\" in milliseconds and a \"price\"."};
        checked.push_back({{"time", std::to_string(*time)}, {"price", *price}});
    }
    return jsonText(checked);
}

std::string readColor(const BodyReader& body, const std::string& absent)
{
    const json* style = body.find("style");
    if (style && !style->is_object())
        throw ApiError{400, "\"style\" must be an object."};
    if (!style || !style->contains("color"))
        return absent;
    const json& color = (*style)["color"];
    std::string text = color.is_string() ? color.get<std::string>() : "";
    const bool good = text.size() == 7 && text.front() == '#'
        && std::all_of(
            text.begin() + 1, text.end(), [](unsigned char digit) { return std::isxdigit(digit); });
    if (!good)
        throw ApiError{400, "\"color\" must be written as #rrggbb."};
    return text;
}

void requireChart(const Platform& platform, const ApiRequest& request, const Drawing& drawing)
{
    if (!findSymbol(platform.symbols(), drawing.symbol))
        throw ApiError{404, "This symbol is not traded here."};
    if (!drawing.accountId.empty() && !platform.owns(request.userId, drawing.accountId))
        throw ApiError{404, "You have no account with this accountId."};
}

Drawing find(Platform& platform, const ApiRequest& request)
{
    auto drawing = platform.drawings().find(request.userId, request.parameter);
    if (!drawing)
        throw ApiError{404, "There is no such drawing."};
    return std::move(*drawing);
}

ApiReply list(Platform& platform, const ApiRequest& request)
{
    Drawing chart;
    chart.symbol = requiredItem(request.target, "symbol");
    chart.accountId = request.target.item("accountId").value_or("");
    requireChart(platform, request, chart);
    auto records = json::array();
    for (const Drawing& drawing : platform.drawings().list(request.userId, chart.symbol, chart.accountId))
        records.push_back(drawingRecord(drawing));
    return {200, jsonText(records), {}};
}

ApiReply create(Platform& platform, const ApiRequest& request)
{
    const BodyReader body(request.body);
    Drawing drawing;
    drawing.symbol = body.text("symbol");
    drawing.accountId = body.optionalText("accountId").value_or("");
    drawing.tool = body.text("toolType");
    drawing.points = readPoints(body, pointsOf(drawing.tool));
    drawing.color = readColor(body, usualColor);
    requireChart(platform, request, drawing);
    const auto present = platform.drawings().list(request.userId, drawing.symbol, drawing.accountId);
    if (present.size() >= mostDrawings)
        throw ApiError{400, "This chart is full; remove a drawing before you add one."};
    drawing.id = newToken().substr(0, 32);
    platform.drawings().add(request.userId, drawing);
    return {201, jsonText(drawingRecord(drawing)), {}};
}

ApiReply update(Platform& platform, const ApiRequest& request)
{
    const BodyReader body(request.body);
    Drawing drawing = find(platform, request);
    if (body.find("points"))
        drawing.points = readPoints(body, pointsOf(drawing.tool));
    drawing.color = readColor(body, drawing.color);
    platform.drawings().update(request.userId, drawing);
    return {200, jsonText(drawingRecord(drawing)), {}};
}

ApiReply remove(Platform& platform, const ApiRequest& request)
{
    const Drawing drawing = find(platform, request);
    static_cast<void>(platform.drawings().remove(request.userId, drawing.id));
    return {200, jsonText({{"id", drawing.id}}), {}};
}

} // namespace

void addDrawingsRoutes(Router& router, Platform& platform)
{
    const auto route = [&](const char* method, const char* pattern, auto handler) {
        router.add(method, pattern, Router::Access::SignedIn,
            [&platform, handler](const ApiRequest& request) { return handler(platform, request); });
    };
    route("GET", "/api/drawings", list);
    route("POST", "/api/drawings", create);
    route("PUT", "/api/drawings/{id}", update);
    route("DELETE", "/api/drawings/{id}", remove);
}

} // namespace practice
