#include "faults/HttpFaultScript.h"

#include "faults/FaultyLine.h"

#include <QByteArray>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace faults {

using practice::LineCarrier;
using practice::LineEnd;
using practice::Way;

namespace {

const std::string headEnd = "\r\n\r\n";
/// How the request of a feed begins.
constexpr std::string_view feedTarget = "GET /ws/";
constexpr std::chrono::microseconds dribbleStep{300};
constexpr std::size_t dripBytes = 10;

/// The length of the first whole message with its body; 0 while it has not come whole.
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

std::string withLength(const std::string& head, const std::string& length)
{
    const std::string name = "Content-Length: ";
    const std::size_t at = head.find(name);
    if (at == std::string::npos)
        return head;
    const std::size_t end = head.find("\r\n", at);
    return head.substr(0, at + name.size()) + length + head.substr(end);
}

std::string page(const std::string& status, const std::string& body, const std::string& headers = {})
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: text/html\r\n" + headers
        + "Content-Length: " + std::to_string(body.size()) + headEnd + body;
}

const std::string htmlText
    = "<!DOCTYPE html><html><body><h1>Please sign in to this network</h1></body></html>";

std::string errorPage()
{
    return page("502 Bad Gateway", "<html><body><h1>502 Bad Gateway</h1></body></html>");
}

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

std::string bombReply()
{
    return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Encoding: gzip\r\nContent-Length: "
        + std::to_string(bomb().size()) + headEnd + bomb();
}

/// The length of the first whole frame that a server sends; 0 while it has not come whole.
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

} // namespace

void prepareBomb()
{
    static_cast<void>(bomb());
}

HttpFaultScript::HttpFaultScript(LineState& state)
    : m_state(state)
{
    m_state.scripts.insert(this);
}

HttpFaultScript::~HttpFaultScript()
{
    m_state.scripts.erase(this);
}

void HttpFaultScript::struck()
{
    ++m_state.news.struck;
}

void HttpFaultScript::answer(const std::string& bytes)
{
    m_carrier->send(Way::ToClient, bytes, {});
}

void HttpFaultScript::breakOff(Fault fault)
{
    struck();
    switch (fault) {
    case Fault::Cut:
        m_carrier->end(LineEnd::Close);
        return;
    case Fault::BlackHole:
        m_carrier->end(LineEnd::Silence);
        m_state.news.holding = true;
        return;
    case Fault::Refused:
        m_state.stopListening();
        [[fallthrough]];
    default:
        m_carrier->end(LineEnd::Reset);
    }
}

void HttpFaultScript::dribble(const std::string& bytes, bool dry)
{
    struck();
    const std::size_t count = dry ? std::min(dripBytes, bytes.size()) : bytes.size();
    for (std::size_t i = 0; i < count; ++i)
        m_carrier->send(Way::ToClient, bytes.substr(i, 1), dribbleStep * i);
    if (!dry)
        return;
    m_carrier->end(LineEnd::Silence);
    m_state.news.holding = true;
}

void HttpFaultScript::open(LineCarrier& carrier)
{
    m_carrier = &carrier;
    ++m_state.news.connections;
    const auto& plan = m_state.plan;
    if (!plan || plan->moment != Moment::Connecting)
        return;
    switch (plan->fault) {
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
        breakOff(plan->fault);
        m_state.news.holding = true; // Qt may not notice that a connection broke which it has not used
        return;
    case Fault::OutOfOrder:
        struck();
        answer(page("200 OK", htmlText));
        return;
    default:
        return;
    }
}

void HttpFaultScript::pass(Way way, std::string bytes, LineCarrier& carrier)
{
    m_carrier = &carrier;
    if (m_upgraded && way == Way::ToServer) {
        carrier.send(way, std::move(bytes), {});
        return;
    }
    if (way == Way::ToServer) {
        m_requests += bytes;
        while (const std::size_t whole = wholeMessage(m_requests)) {
            const std::string request = m_requests.substr(0, whole);
            m_requests.erase(0, whole);
            takeRequest(request);
        }
        return;
    }
    m_replies += bytes;
    while (!m_upgraded) {
        const std::size_t whole = wholeMessage(m_replies);
        if (whole == 0)
            return;
        const std::string reply = m_replies.substr(0, whole);
        m_replies.erase(0, whole);
        m_upgraded = m_isFeed && reply.starts_with("HTTP/1.1 101");
        takeReply(reply);
    }
    takeFeed();
}

void HttpFaultScript::takeRequest(const std::string& request)
{
    const auto& plan = m_state.plan;
    m_isFeed = request.starts_with(feedTarget);
    m_matched = plan && request.starts_with(plan->target);
    if (m_matched && plan->moment == Moment::Between && m_exchanges > 0) {
        switch (plan->fault) {
        case Fault::Refused:
        case Fault::Reset:
        case Fault::Cut:
        case Fault::BlackHole:
            breakOff(plan->fault);
            return;
        default:
            break;
        }
    }
    if (m_matched && plan->moment == Moment::Connecting) {
        switch (plan->fault) {
        case Fault::ServerError:
            struck();
            answer(errorPage());
            return;
        case Fault::Html:
            struck();
            answer(page("200 OK", htmlText));
            return;
        case Fault::Redirect:
            struck();
            answer(page("302 Found", "moved", "Location: " + plan->elsewhere + "\r\n"));
            return;
        default:
            break;
        }
    }
    m_carrier->send(Way::ToServer, request, {});
}

void HttpFaultScript::takeReply(const std::string& reply)
{
    ++m_exchanges;
    m_lastReply = reply;
    const std::size_t headSize = reply.find(headEnd) + headEnd.size();
    const std::string head = reply.substr(0, headSize);
    const std::string body = reply.substr(headSize);
    const auto& plan = m_state.plan;
    const bool matched = std::exchange(m_matched, false) && plan;
    if (matched && plan->moment == Moment::Headers)
        strikeHead(head, body);
    else if (matched && plan->moment == Moment::Body && !m_isFeed)
        strikeBody(head, body);
    else
        answer(reply);
}

void HttpFaultScript::strikeHead(const std::string& head, const std::string& body)
{
    const Plan& plan = *m_state.plan;
    switch (plan.fault) {
    case Fault::Refused:
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
        answer(head.substr(0, head.size() / 2));
        breakOff(plan.fault);
        return;
    case Fault::Drip:
    case Fault::Crumbs:
        dribble(head + body, plan.fault == Fault::Drip);
        return;
    case Fault::TooLong:
        answer(withLength(head, "twelve") + body);
        m_state.news.holding = true; // whoever reads this waits for an end that does not come
        break;
    case Fault::Duplicate:
        answer(head + head + body);
        break;
    case Fault::OutOfOrder:
        answer(body + head);
        break;
    case Fault::ServerError:
        answer(errorPage());
        break;
    case Fault::Html:
        answer(page("200 OK", htmlText));
        break;
    case Fault::Redirect:
        answer(page("307 Temporary Redirect", "moved", "Location: " + plan.elsewhere + "\r\n"));
        break;
    case Fault::GzipBomb:
        answer(bombReply());
        break;
    default:
        answer(head + body);
        return;
    }
    struck();
}

void HttpFaultScript::strikeBody(const std::string& head, const std::string& body)
{
    const Plan& plan = *m_state.plan;
    const std::string half = body.substr(0, body.size() / 2);
    switch (plan.fault) {
    case Fault::Refused:
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
        answer(head + half);
        breakOff(plan.fault);
        return;
    case Fault::Drip:
        answer(head);
        dribble(half.substr(0, dripBytes), true);
        return;
    case Fault::Crumbs:
        answer(head);
        dribble(body, false);
        return;
    case Fault::TooLong:
        answer(withLength(head, std::to_string(body.size() + 10)) + body);
        m_carrier->end(LineEnd::Close);
        break;
    case Fault::TooShort:
        answer(withLength(head, std::to_string(half.size())) + body);
        break;
    case Fault::Duplicate:
        answer(head + body + head + body);
        break;
    case Fault::OutOfOrder:
        answer(head + body.substr(half.size()) + half);
        break;
    case Fault::Html:
        answer(withLength(head, std::to_string(htmlText.size())) + htmlText);
        break;
    case Fault::GzipBomb: { // of which half arrives
        const std::string reply = bombReply();
        answer(reply.substr(0, reply.size() / 2));
        m_carrier->end(LineEnd::Close);
        break;
    }
    default:
        answer(head + body);
        return;
    }
    struck();
}

void HttpFaultScript::strikeIdle()
{
    if (!m_carrier || !m_state.plan || m_state.plan->moment != Moment::Between || m_lastReply.empty())
        return;
    if (m_state.plan->fault == Fault::Duplicate && !m_isFeed) {
        struck();
        answer(m_lastReply);
    } else if (m_state.plan->fault == Fault::ServerError) {
        struck();
        answer(page("408 Request Timeout", htmlText, "Connection: close\r\n"));
        m_carrier->end(LineEnd::Close);
    } else if (m_isFeed) {
        switch (m_state.plan->fault) {
        case Fault::Refused:
        case Fault::Reset:
        case Fault::Cut:
        case Fault::BlackHole:
            breakOff(m_state.plan->fault);
            return;
        default:
            return;
        }
    }
}

void HttpFaultScript::takeFeed()
{
    while (const std::size_t whole = wholeFrame(m_replies)) {
        const std::string frame = m_replies.substr(0, whole);
        m_replies.erase(0, whole);
        takeFrame(frame);
    }
}

void HttpFaultScript::takeFrame(const std::string& frame)
{
    const auto& plan = m_state.plan;
    if (!m_heldFrame.empty()) {
        answer(frame + std::exchange(m_heldFrame, {}));
        return;
    }
    const bool text = (static_cast<unsigned char>(frame[0]) & 0x0fU) == 1;
    if (!plan || !text || !plan->target.starts_with(feedTarget))
        answer(frame);
    else if (plan->moment == Moment::Between && plan->fault == Fault::Duplicate) {
        struck();
        answer(frame + frame);
    } else if (plan->moment == Moment::Between && plan->fault == Fault::OutOfOrder) {
        struck();
        m_heldFrame = frame;
    } else if (plan->moment == Moment::Body) {
        strikeFrame(frame);
    } else {
        answer(frame);
    }
}

void HttpFaultScript::strikeFrame(const std::string& frame)
{
    const Fault fault = m_state.plan->fault;
    switch (fault) {
    case Fault::Refused:
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
        answer(frame.substr(0, frame.size() / 2));
        breakOff(fault);
        return;
    case Fault::Drip:
    case Fault::Crumbs:
        dribble(frame, fault == Fault::Drip);
        return;
    case Fault::TooLong: // a frame of 2^62 bytes
        answer(std::string("\x81\x7f\x40", 3) + std::string(7, '\0') + frame);
        break;
    case Fault::TooShort: { // what is left of it reads as a frame that there is none
        std::string shorter = frame;
        const std::size_t at = (static_cast<unsigned char>(frame[1]) & 0x7fU) == 126 ? 3 : 1;
        shorter[at] = static_cast<char>(static_cast<unsigned char>(shorter[at]) / 2);
        answer(shorter);
        break;
    }
    default:
        answer(frame);
        return;
    }
    struck();
}

} // namespace faults
