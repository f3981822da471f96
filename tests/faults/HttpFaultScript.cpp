#include "faults/HttpFaultScript.h"

#include "faults/FaultyLine.h"
#include "faults/HttpMessages.h"

#include <utility>

namespace faults {

using practice::LineCarrier;
using practice::Way;

namespace {

std::string redirect(const std::string& status, const Plan& plan)
{
    return page(status, "moved", "Location: " + plan.elsewhere + "\r\n");
}

const std::string closing = "Connection: close\r\n";

} // namespace

HttpFaultScript::HttpFaultScript(LineState& state)
    : m_state(state)
    , m_hand(state)
    , m_frames(state, m_hand)
{
    m_state.scripts.insert(this);
}

HttpFaultScript::~HttpFaultScript()
{
    m_state.scripts.erase(this);
}

void HttpFaultScript::open(LineCarrier& carrier)
{
    m_carrier = &carrier;
    m_hand.take(carrier);
    ++m_state.news.connections;
    const auto& plan = m_state.plan;
    if (!plan || plan->moment != Moment::Connecting)
        return;
    switch (plan->fault) {
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
        m_hand.breakOff(plan->fault);
        m_state.news.holding = true; // Qt may not notice that a connection broke which it has not used
        return;
    case Fault::OutOfOrder:
        m_hand.struck();
        m_hand.answer(htmlPage());
        return;
    default:
        return;
    }
}

void HttpFaultScript::pass(Way way, std::string bytes, LineCarrier& carrier)
{
    m_carrier = &carrier;
    m_hand.take(carrier);
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
    m_frames.take(m_replies);
}

void HttpFaultScript::takeRequest(const std::string& request)
{
    const auto& plan = m_state.plan;
    m_isFeed = isOfTheFeed(request);
    m_matched = plan && request.starts_with(plan->target);
    if (m_matched) {
        const bool isKept = m_exchanges > 0;
        if ((plan->moment == Moment::Connecting && strikeInItsPlace())
            || (plan->moment == Moment::Sending && strikeRequest(request))
            || (plan->moment == Moment::Between && isKept && strikeNextRequest()))
            return;
    }
    m_carrier->send(Way::ToServer, request, {});
}

bool HttpFaultScript::strikeInItsPlace()
{
    switch (m_state.plan->fault) {
    case Fault::ServerError:
        m_hand.answer(errorPage("503 Service Unavailable"));
        break;
    case Fault::Duplicate:
        m_hand.answer(errorPage("502 Bad Gateway") + errorPage("502 Bad Gateway"));
        break;
    case Fault::Html:
        m_hand.answer(htmlPage());
        break;
    case Fault::Redirect:
        m_hand.answer(redirect("302 Found", *m_state.plan));
        break;
    default:
        return false;
    }
    m_hand.struck();
    return true;
}

bool HttpFaultScript::strikeRequest(const std::string& request)
{
    const Fault fault = m_state.plan->fault;
    const std::size_t head = headLength(request);
    const std::size_t half = head < request.size() ? (head + request.size()) / 2 : head / 2;
    const auto sendHalf = [&] { m_carrier->send(Way::ToServer, request.substr(0, half), {}); };
    switch (fault) {
    case Fault::Refused:
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
        sendHalf();
        m_hand.breakOffSoon(fault);
        return true;
    case Fault::Drip:
    case Fault::Crumbs: { // the server of the tests knows a feed by how its first bytes begin
        const std::size_t line = request.find('\n');
        m_carrier->send(Way::ToServer, request.substr(0, line), {});
        m_hand.dribble(Way::ToServer, request.substr(line), fault == Fault::Drip);
        return true;
    }
    case Fault::ServerError:
        sendHalf();
        m_hand.answerAndClose(errorPage("502 Bad Gateway", closing));
        return true;
    default:
        return false;
    }
}

bool HttpFaultScript::strikeNextRequest()
{
    switch (m_state.plan->fault) {
    case Fault::Refused:
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
        m_hand.breakOff(m_state.plan->fault);
        return true;
    case Fault::Html:
        m_hand.answer(htmlPage());
        break;
    case Fault::Redirect:
        m_hand.answer(redirect("308 Permanent Redirect", *m_state.plan));
        break;
    default:
        return false;
    }
    m_hand.struck();
    return true;
}

void HttpFaultScript::takeReply(const std::string& reply)
{
    const bool isKept = m_exchanges++ > 0;
    m_lastReply = reply;
    const std::size_t headSize = headLength(reply);
    const std::string head = reply.substr(0, headSize);
    const std::string body = reply.substr(headSize);
    const auto& plan = m_state.plan;
    if (!std::exchange(m_matched, false) || !plan) {
        m_hand.answer(reply);
        return;
    }
    const bool isNext = plan->moment == Moment::Between && isKept && !m_isFeed;
    const Fault fault = plan->fault;
    if (plan->moment == Moment::Headers
        || (isNext && (fault == Fault::Drip || fault == Fault::Crumbs || fault == Fault::GzipBomb)))
        strikeHead(head, body);
    else if ((plan->moment == Moment::Body && !m_isFeed)
        || (isNext && (fault == Fault::TooLong || fault == Fault::TooShort)))
        strikeBody(head, body);
    else
        m_hand.answer(reply);
}

void HttpFaultScript::strikeHead(const std::string& head, const std::string& body)
{
    const Plan& plan = *m_state.plan;
    switch (plan.fault) {
    case Fault::Refused:
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
        m_hand.answer(head.substr(0, head.size() / 2));
        m_hand.breakOff(plan.fault);
        return;
    case Fault::Drip:
    case Fault::Crumbs:
        m_hand.dribble(Way::ToClient, head + body, plan.fault == Fault::Drip);
        return;
    case Fault::TooLong:
        m_hand.answer(withLength(head, "twelve") + body);
        m_state.news.holding = true; // whoever reads this waits for an end that does not come
        break;
    case Fault::TooShort:
        m_hand.answer(withLength(head, "0") + body);
        break;
    case Fault::Duplicate:
        m_hand.answer(head + head + body);
        break;
    case Fault::OutOfOrder:
        m_hand.answer(body + head);
        break;
    case Fault::ServerError:
        m_hand.answer(errorPage("504 Gateway Timeout"));
        break;
    case Fault::Html:
        m_hand.answer(htmlPage());
        break;
    case Fault::Redirect:
        m_hand.answer(redirect("307 Temporary Redirect", plan));
        break;
    case Fault::GzipBomb:
        m_hand.answer(bombReply());
        break;
    default:
        m_hand.answer(head + body);
        return;
    }
    m_hand.struck();
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
        m_hand.answer(head + half);
        m_hand.breakOff(plan.fault);
        return;
    case Fault::Drip:
        m_hand.answer(head);
        m_hand.dribble(Way::ToClient, half, true);
        return;
    case Fault::Crumbs:
        m_hand.answer(head);
        m_hand.dribble(Way::ToClient, body, false);
        return;
    case Fault::TooLong:
        m_hand.answerAndClose(withLength(head, std::to_string(body.size() + 10)) + body);
        return;
    case Fault::ServerError: { // of which half arrives
        const std::string reply = errorPage("500 Internal Server Error");
        m_hand.answerAndClose(reply.substr(0, reply.size() - 10));
        return;
    }
    case Fault::GzipBomb: { // of which half arrives
        const std::string reply = bombReply();
        m_hand.answerAndClose(reply.substr(0, reply.size() / 2));
        return;
    }
    case Fault::TooShort:
        m_hand.answer(withLength(head, std::to_string(half.size())) + body);
        break;
    case Fault::Duplicate:
        m_hand.answer(head + body + head + body);
        break;
    case Fault::OutOfOrder:
        m_hand.answer(head + body.substr(half.size()) + half);
        break;
    case Fault::Html:
        m_hand.answer(withLength(head, std::to_string(htmlText().size())) + htmlText());
        break;
    default:
        m_hand.answer(head + body);
        return;
    }
    m_hand.struck();
}

void HttpFaultScript::strikeIdle()
{
    if (m_hand.isEmpty() || !m_state.plan || m_state.plan->moment != Moment::Between || m_lastReply.empty())
        return;
    switch (m_state.plan->fault) {
    case Fault::Duplicate: // of a feed's frames
        if (m_isFeed)
            return;
        m_hand.struck();
        m_hand.answer(m_lastReply);
        return;
    case Fault::OutOfOrder:
        if (m_isFeed)
            return;
        m_hand.struck();
        m_hand.answer(htmlPage());
        return;
    case Fault::ServerError:
        m_hand.answerAndClose(page("408 Request Timeout", htmlText(), closing));
        return;
    case Fault::Refused:
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
        if (m_isFeed)
            m_hand.breakOff(m_state.plan->fault);
        return;
    default:
        return;
    }
}

} // namespace faults
