#include "practice/server/Sessions.h"

#include "practice/server/Credentials.h"

#include <boost/beast/core/string.hpp>

namespace practice {

namespace {

constexpr std::string_view scheme = "Bearer ";
constexpr std::size_t longestToken = 512;

} // namespace

Sessions::Sessions(Database& database)
    : m_users(database)
{
}

std::string Sessions::open(std::string_view userId, TimeMs now)
{
    std::string token = newToken();
    m_users.addToken(tokenDigest(token), userId, now);
    return token;
}

std::optional<std::string> Sessions::userOfToken(std::string_view token)
{
    // The look-up compares digests, so its timing tells nothing about a token.
    if (token.empty() || token.size() > longestToken)
        return std::nullopt;
    return m_users.userOfToken(tokenDigest(token));
}

std::optional<std::string> Sessions::userOfHeader(std::string_view header)
{
    const auto start = header.substr(0, scheme.size());
    if (!boost::beast::iequals({start.data(), start.size()}, {scheme.data(), scheme.size()}))
        return std::nullopt;
    return userOfToken(header.substr(scheme.size()));
}

} // namespace practice
