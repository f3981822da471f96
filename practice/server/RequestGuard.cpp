#include "practice/server/RequestGuard.h"

#include <boost/beast/core/string.hpp>

#include <algorithm>
#include <utility>

namespace practice {

namespace net = boost::asio;

namespace {

bool isSame(std::string_view left, std::string_view right)
{
    return boost::beast::iequals({left.data(), left.size()}, {right.data(), right.size()});
}

// "name:5001" is "name", "[::1]:5001" is "::1". Any other form gives an empty text, which is nobody's name.
std::string_view withoutPort(std::string_view host)
{
    const bool bracketed = host.starts_with('[');
    const std::size_t end = bracketed ? host.find(']') : host.find(':');
    if (bracketed && end == std::string_view::npos)
        return {};
    const std::string_view rest
        = end == std::string_view::npos ? std::string_view() : host.substr(end + (bracketed ? 1 : 0));
    const bool isPort = rest.starts_with(':')
        && std::all_of(rest.begin() + 1, rest.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!rest.empty() && !isPort)
        return {};
    return bracketed ? host.substr(1, end - 1) : host.substr(0, end);
}

bool isOriginOf(std::string_view origin, std::string_view host)
{
    return isSame(origin, "http://" + std::string(host)) || isSame(origin, "https://" + std::string(host));
}

bool isJson(std::string_view contentType)
{
    std::string_view type = contentType.substr(0, contentType.find(';'));
    while (type.ends_with(' ') || type.ends_with('\t'))
        type.remove_suffix(1);
    return isSame(type, "application/json");
}

} // namespace

RequestGuard::RequestGuard(std::string_view address, std::string hostName)
    : m_address(net::ip::make_address(std::string(address)))
    , m_hostName(std::move(hostName))
{
}

bool RequestGuard::isOurs(std::string_view host) const
{
    if (host.empty())
        return false;
    if (isSame(host, m_hostName))
        return true;
    if (isSame(host, "localhost"))
        return m_address.is_loopback() || m_address.is_unspecified();
    boost::system::error_code error;
    const auto address = net::ip::make_address(std::string(host), error);
    return !error && (m_address.is_unspecified() || address == m_address);
}

std::optional<RequestGuard::Objection> RequestGuard::objection(const RequestFacts& request) const
{
    if (request.hosts != 1 || !isOurs(withoutPort(request.host))) {
        return Objection{421,
            "This platform is not called by that name. Use the address that it printed, or start it with"
            " --host-name and the name."};
    }
    if (request.origins > 1 || (request.origins == 1 && !isOriginOf(request.origin, request.host)))
        return Objection{403, "Pages of other web sites may not use this platform."};
    if (request.hasBody && !isJson(request.contentType))
        return Objection{415, "The request body must be sent as application/json."};
    return std::nullopt;
}

} // namespace practice
