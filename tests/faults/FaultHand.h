#pragma once

#include "faults/Fault.h"

#include "practice/line/LineScript.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace faults {

struct LineNews;
class HttpFaultScript;

/// What the scripts of a line share, on the line's thread.
struct LineState final {
    std::optional<Plan> plan;
    LineNews& news;
    std::function<void()> stopListening;
    std::function<void(std::function<void()>)> soon; ///< does it once what was sent before has arrived
    std::set<HttpFaultScript*> scripts;
};

/// Does to one connection what faults are made of. Each of these strikes, but for answer().
class FaultHand final {
public:
    explicit FaultHand(LineState& state)
        : m_state(state)
    {
    }

    /// Needed before anything else.
    void take(practice::LineCarrier& carrier) { m_carrier = &carrier; }
    [[nodiscard]] bool isEmpty() const { return !m_carrier; }

    void struck();
    /// Says to the client what the line was handed, or something else.
    void answer(const std::string& bytes);
    /// The same, and the client's connection ends in the orderly way.
    void answerAndClose(const std::string& bytes);
    /// Breaks the connection as the fault says.
    void breakOff(Fault fault);
    /// The same once the server has what was sent to it.
    void breakOffSoon(Fault fault);
    /// One byte after the other; `dry` stops after some.
    void dribble(practice::Way way, const std::string& bytes, bool dry);

private:
    LineState& m_state;
    practice::LineCarrier* m_carrier = nullptr;
    std::shared_ptr<bool> m_life = std::make_shared<bool>(true); ///< as long as the connection is there
};

} // namespace faults
