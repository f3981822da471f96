#include "faults/FrameFaults.h"

#include "faults/HttpMessages.h"

#include <utility>

namespace faults {

using practice::Way;

void FrameFaults::take(std::string& bytes)
{
    while (const std::size_t whole = wholeFrame(bytes)) {
        const std::string frame = bytes.substr(0, whole);
        bytes.erase(0, whole);
        takeFrame(frame);
    }
}

void FrameFaults::takeFrame(const std::string& frame)
{
    const auto& plan = m_state.plan;
    if (!m_held.empty()) {
        m_hand.answer(frame + std::exchange(m_held, {}));
        return;
    }
    const bool text = (static_cast<unsigned char>(frame[0]) & 0x0fU) == 1;
    if (!plan || !text || !isOfTheFeed(plan->target)) {
        m_hand.answer(frame);
    } else if (plan->moment == Moment::Between && plan->fault == Fault::Duplicate) {
        m_hand.struck();
        m_hand.answer(frame + frame);
    } else if (plan->moment == Moment::Between && plan->fault == Fault::OutOfOrder) {
        m_hand.struck();
        m_held = frame;
    } else if (plan->moment == Moment::Body) {
        strike(frame);
    } else {
        m_hand.answer(frame);
    }
}

void FrameFaults::strike(const std::string& frame)
{
    const Fault fault = m_state.plan->fault;
    switch (fault) {
    case Fault::Refused:
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
        m_hand.answer(frame.substr(0, frame.size() / 2));
        m_hand.breakOff(fault);
        return;
    case Fault::Drip:
    case Fault::Crumbs:
        m_hand.dribble(Way::ToClient, frame, fault == Fault::Drip);
        return;
    case Fault::TooLong: // a frame of 2^62 bytes
        m_hand.answer(std::string("\x81\x7f\x40", 3) + std::string(7, '\0') + frame);
        break;
    case Fault::TooShort: { // what is left of it reads as a frame that there is none
        std::string shorter = frame;
        const std::size_t at = (static_cast<unsigned char>(frame[1]) & 0x7fU) == 126 ? 3 : 1;
        shorter[at] = static_cast<char>(static_cast<unsigned char>(shorter[at]) / 2);
        m_hand.answer(shorter);
        break;
    }
    default:
        m_hand.answer(frame);
        return;
    }
    m_hand.struck();
}

} // namespace faults
