#include "pixel/AwakeProcessors.h"

#include <cstdint>

#include <fcntl.h>
#include <unistd.h>

AwakeProcessors::AwakeProcessors()
    : m_file(::open("/dev/cpu_dma_latency", O_WRONLY | O_CLOEXEC))
{
    // In microseconds; holds until the file is closed.
    constexpr std::int32_t longestWakeUp = 0;
    if (m_file >= 0 && ::write(m_file, &longestWakeUp, sizeof longestWakeUp) != sizeof longestWakeUp) {
        ::close(m_file);
        m_file = -1;
    }
}

AwakeProcessors::~AwakeProcessors()
{
    if (m_file >= 0)
        ::close(m_file);
}
