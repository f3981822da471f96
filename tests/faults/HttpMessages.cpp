#include "faults/HttpMessages.h"

#include "support/FrameLength.h"

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
    const std::size_t length = frameLength(bytes).value_or(0);
    return bytes.size() < length ? 0 : length;
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
