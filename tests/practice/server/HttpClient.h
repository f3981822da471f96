#pragma once

#include "practice/server/WireSocket.h"

#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <string_view>

struct HttpReply {
    int status = 0;
    std::map<std::string, std::string> headers; ///< names in lower case
    std::string body;

    /// The body; null when it is not JSON.
    [[nodiscard]] nlohmann::json json() const { return nlohmann::json::parse(body, nullptr, false); }
    /// The "message" of the body; empty when there is none.
    [[nodiscard]] std::string message() const;
};

/// HTTP/1.1 over one connection that is kept.
class HttpClient final {
public:
    explicit HttpClient(std::uint16_t port, int receiveBuffer = 0, const std::string& from = {});

    HttpReply request(std::string_view method, std::string_view target, std::string_view body = {});
    HttpReply get(std::string_view target) { return request("GET", target); }
    HttpReply post(std::string_view target, const nlohmann::json& body)
    {
        return request("POST", target, body.dump());
    }
    HttpReply put(std::string_view target, const nlohmann::json& body)
    {
        return request("PUT", target, body.dump());
    }

    /// Sent with every later request; empty sends none.
    void setToken(std::string token) { m_token = std::move(token); }
    [[nodiscard]] const std::string& token() const { return m_token; }
    /// Signs in as the practice trader and keeps the token.
    void signIn();
    /// The record of the practice trader's demo account. Signed in only.
    [[nodiscard]] nlohmann::json demoAccount();

    /// The next reply on this connection. `withBody` is false for the reply to HEAD.
    [[nodiscard]] HttpReply read(bool withBody = true);
    [[nodiscard]] WireSocket& socket() { return m_socket; }

private:
    WireSocket m_socket;
    std::string m_token;
};
