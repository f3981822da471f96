#include "faults/HttpMessages.h"

#include <QByteArray>

#include <algorithm>
#include <cstdlib>

namespace faults {

namespace {

const std::string headEnd = "\r\n\r\n";

/// 64 MiB of blanks, packed.
const std::string& bomb()
{
    static const std::string packed = [] {
        constexpr qsizetype size = qsizetype{64} << 20;
        constexpr qsizetype lengthAndHead = 4 + 2; // of qCompress() and of its format
        constexpr qsizetype check = 4;
        const QByteArray zlib = qCompress(QByteArray(size, ' '), 9);
        // The same bytes as gzip packs them; nobody gets as far as the check at the end.
        return std::string("\x1f\x8b\x08\0\0\0\0\0\0\x03", 10)
            + zlib.mid(lengthAndHead).chopped(check).toStdString() + std::string(8, '\0');
    }();
    return packed;
}

} // namespace

std::size_t wholeMessage(const std::string& bytes)
{
    const std::size_t head = bytes.find(headEnd);
    if (head == std::string::npos)
        return 0;
    std::string lower = bytes.substr(0, head + 2);
    std::transform(lower.begin(), lower.end(), lower.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    const std::string name = "\r\ncontent-length:";
    const std::size_t at = lower.find(name);
    const std::size_t length
        = at == std::string::npos ? 0 : std::strtoul(lower.c_str() + at + name.size(), nullptr, 10);
    const std::size_t whole = head + headEnd.size() + length;
    return bytes.size() < whole ? 0 : whole;
}

std::size_t headLength(const std::string& message)
{
    return message.find(headEnd) + headEnd.size();
}

std::size_t wholeFrame(const std::string& bytes)
{
    if (bytes.size() < 2)
        return 0;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    std::size_t length = byte(1) & 0x7fU;
    std::size_t head = 2;
    if (length >= 126) {
        const std::size_t digits = length == 126 ? 2 : 8;
        if (bytes.size() < head + digits)
            return 0;
        length = 0;
        for (std::size_t i = 0; i < digits; ++i)
            length = length << 8U | byte(head + i);
        head += digits;
    }
    return bytes.size() < head + length ? 0 : head + length;
}

std::string withLength(const std::string& head, const std::string& length)
{
    const std::string name = "Content-Length: ";
    const std::size_t at = head.find(name);
    if (at == std::string::npos)
        return head;
    const std::size_t end = head.find("\r\n", at);
    return head.substr(0, at + name.size()) + length + head.substr(end);
}

const std::string& htmlText()
{
    static const std::string text
        = "<!DOCTYPE html><html><body><h1>Please sign in to this network</h1></body></html>";
    return text;
}

std::string page(const std::string& status, const std::string& body, const std::string& headers)
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: text/html\r\n" + headers
        + "Content-Length: " + std::to_string(body.size()) + headEnd + body;
}

std::string htmlPage()
{
    return page("200 OK", htmlText());
}

std::string errorPage(const std::string& status, const std::string& headers)
{
    return page(status, "<html><body><h1>" + status + "</h1></body></html>", headers);
}

std::string bombReply()
{
    return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Encoding: gzip\r\nContent-Length: "
        + std::to_string(bomb().size()) + headEnd + bomb();
}

void prepareBomb()
{
    static_cast<void>(bomb());
}

} // namespace faults
