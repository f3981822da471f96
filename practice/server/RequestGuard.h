#pragma once

#include <boost/asio/ip/address.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace practice {

/// What a request says about where it comes from and what it carries.
struct RequestFacts {
    std::size_t hosts = 0; ///< number of Host headers
    std::string_view host;
    std::size_t origins = 0; ///< number of Origin headers
    std::string_view origin;
    bool hasBody = false;
    std::string_view contentType;
};

/// Keeps foreign web pages out. A browser on this machine would reach the platform for any page that it
/// shows, but its headers tell the name that was called (a page may have its own name resolved to our
/// address) and the page's origin, and a page cannot send JSON without leave.
class RequestGuard final {
public:
    /// The names that count as ours: the address that is listened on, "localhost" where that means it, and
    /// `hostName` unless it is empty. Where every address is listened on: any that is written in numbers.
    RequestGuard(std::string_view address, std::string hostName);

    struct Objection {
        int status;
        std::string message;
    };
    /// Why a request is not served; nothing when it is.
    [[nodiscard]] std::optional<Objection> objection(const RequestFacts& request) const;

private:
    [[nodiscard]] bool isOurs(std::string_view host) const;

    boost::asio::ip::address m_address;
    std::string m_hostName;
};

} // namespace practice
