#include "practice/server/Router.h"

#include "practice/storage/StorageError.h"

#include <iostream>
#include <utility>

namespace practice {

namespace {

constexpr std::string_view placeholder = "{id}";

// The value of the placeholder, empty when there is none; nothing when the path does not fit.
std::optional<std::string> fit(const std::vector<std::string>& pattern, const std::vector<std::string>& path)
{
    if (pattern.size() != path.size())
        return std::nullopt;
    std::string parameter;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == placeholder && !path[i].empty())
            parameter = path[i];
        else if (pattern[i] != path[i])
            return std::nullopt;
    }
    return parameter;
}

template <typename Work> void guarded(const Respond& respond, Work work)
{
    try {
        work();
    } catch (const ApiError& error) {
        respond(errorReply(error.status, error.message));
    } catch (const StorageError& error) {
        std::cerr << "tavoran-practice: storage: " << error.what() << std::endl;
        respond(errorReply(503, "The stored data cannot be used, and nothing was changed. Try again later."));
    } catch (const std::exception& error) {
        std::cerr << "tavoran-practice: request: " << error.what() << std::endl;
        respond(errorReply(500, "The platform could not answer because of a fault of its own."));
    }
}

} // namespace

void answer(const Respond& respond, const std::function<ApiReply()>& make)
{
    guarded(respond, [&] { respond(make()); });
}

Router::Router(Authenticate authenticate)
    : m_authenticate(std::move(authenticate))
{
}

void Router::add(std::string_view method, std::string_view pattern, Access access, Handler handler)
{
    addLater(method, pattern, access,
        [handler = std::move(handler)](
            const ApiRequest& request, const Respond& respond) { respond(handler(request)); });
}

void Router::addLater(std::string_view method, std::string_view pattern, Access access, LaterHandler handler)
{
    auto parsed = Target::parse(pattern).value();
    m_routes.push_back({std::string(method), std::move(parsed.segments), access, std::move(handler)});
}

void Router::handle(std::string_view method, std::string_view target, const Caller& caller, std::string body,
    const Respond& respond) const
{
    auto parsed = Target::parse(target);
    if (!parsed)
        return respond(errorReply(400, "The address of the request cannot be read; check its % escapes."));
    std::string allowed;
    for (const Route& route : m_routes) {
        auto parameter = fit(route.pattern, parsed->segments);
        if (!parameter)
            continue;
        if (route.method == method) {
            ApiRequest request{
                std::move(*parsed), std::move(*parameter), std::move(body), std::string(caller.client), {}};
            return dispatch(route, std::move(request), caller.authorization, respond);
        }
        allowed += (allowed.empty() ? "" : ", ") + route.method;
    }
    if (allowed.empty())
        return respond(errorReply(404, "There is nothing at this address."));
    ApiReply reply = errorReply(405, "This address answers " + allowed + " only.");
    reply.allow = allowed;
    respond(std::move(reply));
}

void Router::dispatch(
    const Route& route, ApiRequest request, std::string_view authorization, const Respond& respond) const
{
    guarded(respond, [&] {
        if (route.access == Access::SignedIn) {
            auto user = m_authenticate(authorization);
            if (!user)
                throw ApiError{401, "You are not signed in, or the session has ended. Please sign in again."};
            request.userId = std::move(*user);
        }
        route.handler(request, respond);
    });
}

} // namespace practice
