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

/// Keeps web pages out. A browser on this machine reaches the platform for any page that it shows, but it
/// says by which name (a page may have its own name resolved to our address) and for whose page, and a page
/// cannot send JSON on its own.
class RequestGuard final {
public:
    /// Answers to the address that is listened on, to "localhost" where that means it, and to `hostName`
    /// unless it is empty. Where every address is listened on, to each written as a number.
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
