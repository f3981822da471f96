#pragma once

#include "faults/Fault.h"
#include "faults/FaultHand.h"
#include "faults/FrameFaults.h"

#include "practice/line/LineScript.h"

#include <string>

namespace faults {

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
    /// The line answers in the server's place, or breaks. False where the plan says nothing of it.
    [[nodiscard]] bool strikeInItsPlace();
    [[nodiscard]] bool strikeNextRequest();
    /// Half of the request goes on.
    [[nodiscard]] bool strikeRequest(const std::string& request);
    void strikeHead(const std::string& head, const std::string& body);
    void strikeBody(const std::string& head, const std::string& body);

    LineState& m_state;
    FaultHand m_hand;
    FrameFaults m_frames;
    practice::LineCarrier* m_carrier = nullptr;
    std::string m_requests; ///< that have not come whole
    std::string m_replies;
    std::string m_lastReply;
    bool m_matched = false; ///< the plan is about the request under way
    bool m_isFeed = false;
    bool m_upgraded = false;
    int m_exchanges = 0;
};

} // namespace faults
