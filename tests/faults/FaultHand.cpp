#include "faults/FaultHand.h"

#include "faults/FaultyLine.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace faults {

using practice::LineEnd;
using practice::Way;

namespace {

constexpr std::chrono::microseconds dribbleStep{300};
constexpr std::size_t dripBytes = 10;

} // namespace

void FaultHand::struck()
{
    ++m_state.news.struck;
}

void FaultHand::answer(const std::string& bytes)
{
    m_carrier->send(Way::ToClient, bytes, {});
}

void FaultHand::answerAndClose(const std::string& bytes)
{
    struck();
    answer(bytes);
    m_carrier->end(LineEnd::Close);
}

void FaultHand::breakOff(Fault fault)
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

void FaultHand::breakOffSoon(Fault fault)
{
    m_state.soon([this, fault, life = std::weak_ptr<bool>(m_life)] {
        if (!life.expired())
            breakOff(fault);
    });
}

void FaultHand::dribble(Way way, const std::string& bytes, bool dry)
{
    struck();
    const std::size_t count = dry ? std::min(dripBytes, bytes.size()) : bytes.size();
    for (std::size_t i = 0; i < count; ++i)
        m_carrier->send(way, bytes.substr(i, 1), dribbleStep * i);
    if (!dry)
        return;
    m_carrier->end(LineEnd::Silence);
    m_state.news.holding = true;
}

} // namespace faults
