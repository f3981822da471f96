#include "fuzz/Answers.h"

#include "fuzz/FeedFrames.h"

#include "practice/server/Limits.h"
#include "practice/server/Target.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket/rfc6455.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace http = boost::beast::http;

namespace fuzz {

namespace {

/// A message at the beginning of a text.
template <typename Parser> struct Found {
    Parser parser;
    std::size_t header = 0; ///< its length in bytes; 0 where the text ends before it does
    std::size_t size = 0;   ///< the same of all of it
    boost::system::error_code error;

    void read(std::string_view text)
    {
        header = put(text);
        if (!parser.is_header_done())
            header = 0;
        parser.eager(true);
        size = header;
        while (header > 0 && !error && !parser.is_done() && size < text.size()) {
            const std::size_t taken = put(text.substr(size));
            size += taken;
            if (taken == 0)
                break;
        }
        if (!error && !parser.is_done())
            error = http::error::need_more;
    }

    [[nodiscard]] bool endsTooEarly() const
    {
        return error == http::error::need_more || error == http::error::partial_message;
    }

private:
    std::size_t put(std::string_view text)
    {
        try {
            return parser.put(boost::asio::buffer(text), error);
        } catch (const std::length_error&) { // a field of more than 64 KB, which the platform never gets to
            error = http::error::header_limit;
            return 0;
        }
    }
};

/// Without any of the platform's limits.
struct Request : Found<http::request_parser<http::string_body>> {
    explicit Request(std::string_view text)
    {
        parser.header_limit(std::numeric_limits<std::uint32_t>::max());
        parser.body_limit(std::numeric_limits<std::uint64_t>::max());
        if (text.empty())
            error = http::error::need_more;
        else
            read(text);
    }
};

struct Response : Found<http::response_parser<http::string_body>> {
    Response(std::string_view text, bool hasBody)
    {
        parser.body_limit(16U << 20U);
        parser.skip(!hasBody);
        read(text);
        demand(!error, "an answer is whole");
    }
};

bool asksForFeed(const http::request<http::string_body>& request)
{
    const std::string_view target(request.target().data(), request.target().size());
    return boost::beast::websocket::is_upgrade(request)
        && target.substr(0, target.find('?')) == "/ws/terminal";
}

/// Whether the client may have been let in to the feed.
bool opensFeed(const http::request<http::string_body>& request)
{
    const auto target = practice::Target::parse({request.target().data(), request.target().size()});
    const auto token = target ? target->item("token") : std::nullopt;
    return asksForFeed(request) && target && target->segments == std::vector<std::string>{"ws", "terminal"}
    && (token == "first" || token == secondWord);
}

void demandProper(const http::response<http::string_body>& response, bool hasBody)
{
    const unsigned status = response.result_int();
    demand(status / 100 == 2 || status / 100 == 4, "no request is the platform's fault, and it has room");
    if (!hasBody)
        return;
    const auto json = nlohmann::json::parse(response.body(), nullptr, false);
    demand(!json.is_discarded(), "an answer is JSON");
    demand(status / 100 == 2 || (json.is_object() && json.contains("message") && !json["message"].empty()),
        "a refusal says why");
}

void demandLimits(const Request& request, unsigned status)
{
    const std::size_t body = request.parser.get().body().size();
    const bool isTooLong = status == 413 || status == 431;
    // The first line and what follows it have that limit each.
    if (body > practice::longestBody || request.header > 2 * practice::longestHeader)
        demand(isTooLong, "no request is longer than accepted");
    // Between the pieces of a body there may be more than there is room for.
    if (body <= practice::longestBody && request.header <= practice::longestHeader
        && !request.parser.chunked())
        demand(!isTooLong, "what is accepted is not too long");
}

} // namespace

std::size_t endOfFeedRequest(std::string_view text)
{
    std::size_t end = 0;
    while (true) {
        const Request request(text.substr(end));
        if (request.error)
            return text.size();
        end += request.size;
        if (asksForFeed(request.parser.get()))
            return end;
    }
}

void demandAnswers(std::string_view text, std::string_view answer)
{
    while (true) {
        const Request request(text);
        if (answer.starts_with("HTTP/1.1 100 ") || answer.starts_with("HTTP/1.0 100 ")) {
            demand(request.header > 0 && request.parser.get().count(http::field::expect) > 0,
                "only who waits is told to go on");
            answer.remove_prefix(Response(answer, false).size);
        }
        if (answer.empty()) {
            // What is wrong in a header that comes in pieces is found once its end is there.
            const bool isCut = text.find("\r\n\r\n") == std::string_view::npos;
            demand(request.endsTooEarly() || isCut, "a whole request has an answer");
            return;
        }
        const std::string_view told = answer.substr(std::min<std::size_t>(answer.size(), 9), 3);
        const bool isHead = !request.error && request.parser.get().method() == http::verb::head;
        const bool hasBody = !isHead || told == "413" || told == "431";
        const Response response(answer, hasBody);
        const auto& reply = response.parser.get();
        if (reply.result_int() == 101) {
            demand(!request.error && opensFeed(request.parser.get()), "the feed is for those signed in");
            demandFeed(text.substr(request.size), answer.substr(response.size));
            return;
        }
        demandProper(reply, hasBody);
        if (request.error) {
            demand(request.endsTooEarly() ? reply.result_int() == 413 || reply.result_int() == 431
                                          : reply.result_int() / 100 == 4,
                "what is no whole request is refused");
            demand(!reply.keep_alive() && response.size == answer.size(), "a refusal is the end");
            return;
        }
        demandLimits(request, reply.result_int());
        answer.remove_prefix(response.size);
        text.remove_prefix(request.size);
        if (!reply.keep_alive()) {
            demand(answer.empty(), "the last answer is the end");
            return;
        }
        demand(request.parser.get().keep_alive(), "a connection goes on as it was asked");
    }
}

void demandNothingOf(const Belongings& owner, std::string_view answer)
{
    demand(answer.find(secondWord) == std::string_view::npos, "no answer tells of another trader");
    for (const std::string& id : owner.ids) {
        for (const char* key : {"\"id", "ccountId", "radeId"})
            demand(answer.find(key + (R"(":")" + id) + '"') == std::string_view::npos,
                "no answer shows what is another trader's");
    }
}

} // namespace fuzz
