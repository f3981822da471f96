#include "practice/server/HttpClient.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <stdexcept>

std::string HttpReply::message() const
{
    const auto parsed = json();
    return parsed.is_object() && parsed.contains("message") && parsed["message"].is_string()
        ? parsed["message"].get<std::string>()
        : std::string();
}

HttpClient::HttpClient(std::uint16_t port, int receiveBuffer, const std::string& from)
    : m_socket(port, receiveBuffer, from)
{
}

HttpReply HttpClient::request(std::string_view method, std::string_view target, std::string_view body)
{
    std::string text(method);
    text.append(" ").append(target).append(
        " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/json\r\n");
    if (!m_token.empty())
        text.append("Authorization: Bearer ").append(m_token).append("\r\n");
    if (method == "GET" || method == "HEAD")
        text.append("\r\n");
    else
        text.append("Content-Length: ").append(std::to_string(body.size())).append("\r\n\r\n").append(body);
    m_socket.send(text);
    return read(method != "HEAD");
}

HttpReply HttpClient::read(bool withBody)
{
    std::istringstream head(m_socket.readUntil("\r\n\r\n"));
    HttpReply reply;
    std::string line;
    std::getline(head, line);
    if (line.rfind("HTTP/1.", 0) != 0)
        throw std::runtime_error("not an HTTP reply");
    reply.status = std::stoi(line.substr(9, 3));
    while (std::getline(head, line) && line != "\r") {
        const std::size_t colon = line.find(": ");
        std::string name = line.substr(0, colon);
        std::ranges::transform(
            name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        reply.headers[name] = line.substr(colon + 2, line.size() - colon - 3);
    }
    if (withBody && reply.headers.contains("content-length"))
        reply.body = m_socket.read(std::stoul(reply.headers["content-length"]));
    return reply;
}

void HttpClient::signIn()
{
    const HttpReply reply
        = post("/api/auth/login", {{"email", "trader@practice.local"}, {"password", "practice"}});
    if (reply.status != 200)
        throw std::runtime_error("cannot sign in: " + reply.body);
    m_token = reply.json().at("token").get<std::string>();
}

nlohmann::json HttpClient::demoAccount()
{
    for (const nlohmann::json& account : get("/api/accounts").json()) {
        if (account.at("type") == "DEMO")
            return account;
    }
    throw std::runtime_error("no demo account");
}
