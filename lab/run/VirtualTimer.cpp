#include "lab/run/VirtualTimer.h"

namespace lab {

void VirtualTimer::timeOut()
{
    // Before the call, which may stop it or start it anew.
    m_due += m_interval;
    if (m_due < m_clock.now)
        m_due = m_clock.now + m_interval;
    m_call();
}

} // namespace lab
