// A request as it comes from the socket, with the platform's limits: its header, who may ask, and its
// address.

#include "fuzz/Fuzz.h"

#include "practice/server/Api.h"
#include "practice/server/Limits.h"
#include "practice/server/QueryReader.h"
#include "practice/server/RequestGuard.h"
#include "practice/server/Target.h"

#include <boost/beast/http.hpp>

#include <algorithm>
#include <array>

using fuzz::demand;
namespace http = boost::beast::http;

namespace fuzz_request {

namespace {

std::string_view view(boost::beast::string_view text)
{
    return {text.data(), text.size()};
}

std::string lower(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return result;
}

std::string encoded(std::string_view text)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        result += {'%', digits[byte >> 4U], digits[byte & 15U]};
    }
    return result;
}

bool areEqual(const practice::Target& a, const practice::Target& b)
{
    return a.segments == b.segments && a.query == b.query;
}

/// The address made anew of its parts.
std::string addressOf(const practice::Target& target)
{
    std::string text;
    for (const std::string& segment : target.segments)
        text += '/' + encoded(segment);
    char separator = '?';
    for (const auto& [name, value] : target.query) {
        text += separator + encoded(name) + '=' + encoded(value);
        separator = '&';
    }
    return text;
}

void readTarget(std::string_view text)
{
    const auto target = practice::Target::parse(text);
    if (!target)
        return;
    demand(!target->segments.empty(), "an address has segments");
    for (const std::string& segment : target->segments)
        demand(segment.find('\0') == std::string::npos, "no segment hides a zero");
    const auto again = practice::Target::parse(addressOf(*target));
    demand(again && areEqual(*target, *again), "an address can be written again");
    try {
        const int count = practice::countItem(*target, "limit", 7, 5000);
        demand(count >= 1 && count <= 5000, "a count is in its range");
        demand(!practice::requiredItem(*target, "accountId").empty(), "what is required is there");
    } catch (const practice::ApiError& error) {
        demand(error.status == 400 && !error.message.empty(), "a refusal says why");
    }
}

/// The names that are ours, as the platform is started below.
bool isOurs(std::string_view host)
{
    const std::string name = lower(host.substr(0, host.find(':')));
    constexpr std::array<std::string_view, 3> ours{"127.0.0.1", "localhost", "desk.lan"};
    return std::find(ours.begin(), ours.end(), name) != ours.end();
}

void guard(const http::request<http::string_body>& request)
{
    static const practice::RequestGuard guard("127.0.0.1", "desk.lan");
    const practice::RequestFacts facts{request.count(http::field::host), view(request[http::field::host]),
        request.count(http::field::origin), view(request[http::field::origin]), !request.body().empty(),
        view(request[http::field::content_type])};
    const auto objection = guard.objection(facts);
    if (objection) {
        demand(objection->status >= 400 && !objection->message.empty(), "an objection says why");
        return;
    }
    demand(facts.hosts == 1 && isOurs(facts.host), "only our names are served");
    const std::string origin = lower(facts.origin);
    demand(facts.origins == 0 || origin == "http://" + lower(facts.host)
            || origin == "https://" + lower(facts.host),
        "no foreign page is served");
    demand(!facts.hasBody || lower(facts.contentType).starts_with("application/json"), "a body is JSON");
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    readTarget(fuzz::textOf(data, size));

    http::request_parser<http::string_body> parser;
    parser.header_limit(practice::longestHeader);
    parser.body_limit(practice::longestBody);
    parser.eager(true);
    std::size_t taken = 0;
    boost::system::error_code error;
    while (!error && !parser.is_done() && taken < size) {
        const std::size_t now = parser.put(boost::asio::const_buffer(data + taken, size - taken), error);
        taken += now;
        if (now == 0)
            break;
    }
    if (error || !parser.is_done())
        return 0;
    const http::request<http::string_body> request = parser.release();
    demand(request.body().size() <= practice::longestBody, "no body is longer than accepted");
    guard(request);
    readTarget(view(request.target()));
    return 0;
}

const fuzz::Target target("request", &attempt, 2 * practice::longestHeader + practice::longestBody);

} // namespace

} // namespace fuzz_request
