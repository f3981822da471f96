#pragma once

#include "faults/FaultHand.h"

#include <string>

namespace faults {

/// The frames that a feed's server sends, each handed on whole but for those that the plan is about.
class FrameFaults final {
public:
    FrameFaults(LineState& state, FaultHand& hand)
        : m_state(state)
        , m_hand(hand)
    {
    }

    /// Hands on what has come whole, and takes it out of these bytes.
    void take(std::string& bytes);

private:
    void takeFrame(const std::string& frame);
    void strike(const std::string& frame);

    LineState& m_state;
    FaultHand& m_hand;
    std::string m_held; ///< that another one overtakes
};

} // namespace faults
