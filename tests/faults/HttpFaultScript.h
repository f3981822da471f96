#pragma once

#include "faults/Fault.h"

#include "practice/line/LineScript.h"

#include <functional>
#include <optional>
#include <set>
#include <string>

namespace faults {

struct LineNews;
class HttpFaultScript;

/// Makes the huge answer, so that no request waits for it.
void prepareBomb();

/// What the scripts of a line share, on the line's thread.
struct LineState final {
    std::optional<Plan> plan;
    LineNews& news;
    std::function<void()> stopListening;
    std::set<HttpFaultScript*> scripts;
};

/// A connection that speaks HTTP, and perhaps becomes a feed. Requests and answers are handed on whole, but
/// for those that the plan is about.
class HttpFaultScript final : public practice::LineScript {
public:
    explicit HttpFaultScript(LineState& state);
    ~HttpFaultScript() override;
    HttpFaultScript(const HttpFaultScript&) = delete;
    HttpFaultScript& operator=(const HttpFaultScript&) = delete;

    void open(practice::LineCarrier& carrier) override;
    void pass(practice::Way way, std::string bytes, practice::LineCarrier& carrier) override;
    /// Does to an idle connection what the plan says.
    void strikeIdle();

private:
    void takeRequest(const std::string& request);
    void takeReply(const std::string& reply);
    void takeFeed();
    void takeFrame(const std::string& frame);
    /// Breaks the connection as the fault says.
    void breakOff(Fault fault);
    void strikeHead(const std::string& head, const std::string& body);
    void strikeBody(const std::string& head, const std::string& body);
    void strikeFrame(const std::string& frame);
    /// One byte after the other; `dry` stops after some.
    void dribble(const std::string& bytes, bool dry);
    void answer(const std::string& bytes);
    void struck();

    LineState& m_state;
    practice::LineCarrier* m_carrier = nullptr;
    std::string m_requests; ///< that have not come whole
    std::string m_replies;
    std::string m_lastReply;
    std::string m_heldFrame; ///< that another one overtakes
    bool m_matched = false;  ///< the plan is about the request under way
    bool m_isFeed = false;
    bool m_upgraded = false;
    int m_exchanges = 0;
};

} // namespace faults
