#pragma once

#include "practice/server/Api.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace practice {

/// Gives `respond` what `make` returns, or the reply that goes with the ApiError or StorageError it throws.
void answer(const Respond& respond, const std::function<ApiReply()>& make);

/// Finds the handler of a request and turns everything that goes wrong on the way into a reply.
class Router final {
public:
    using Handler = std::function<ApiReply(const ApiRequest&)>;
    using LaterHandler = std::function<void(const ApiRequest&, const Respond&)>;
    /// The user of an Authorization header; nothing when it opens no session.
    using Authenticate = std::function<std::optional<std::string>(std::string_view header)>;
    enum class Access { Everybody, SignedIn };

    explicit Router(Authenticate authenticate);

    /// `pattern` is a path such as "/api/trades/close/{id}"; "{id}" stands for one segment that is not empty.
    void add(std::string_view method, std::string_view pattern, Access access, Handler handler);
    void addLater(std::string_view method, std::string_view pattern, Access access, LaterHandler handler);

    /// Who sends a request.
    struct Caller {
        std::string_view authorization; ///< the header of that name
        std::string_view client;
    };

    /// Answers a request: 400 for an address that cannot be read, 404 for an unknown one, 405 for a method
    /// that the address does not have, 401 without a session, else the handler's answer.
    void handle(std::string_view method, std::string_view target, const Caller& caller, std::string body,
        const Respond& respond) const;

private:
    struct Route {
        std::string method;
        std::vector<std::string> pattern;
        Access access;
        LaterHandler handler;
    };
    void dispatch(
        const Route& route, ApiRequest request, std::string_view authorization, const Respond& respond) const;

    Authenticate m_authenticate;
    std::vector<Route> m_routes;
};

} // namespace practice
