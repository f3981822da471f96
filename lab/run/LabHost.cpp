#include "lab/run/LabHost.h"

namespace lab {

LabHost::LabHost(const VirtualClock& clock, std::uint64_t seed)
    : m_clock(clock)
    // Not the stream that simulated prices of the same seed are made from.
    , m_random(practice::hashKey({seed, practice::hashText("script")}))
{
}

LabHost::~LabHost() = default;

} // namespace lab
