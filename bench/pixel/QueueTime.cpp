#include "pixel/QueueTime.h"

#include <fstream>

QueueTime::QueueTime(const std::vector<std::int64_t>& processIds)
{
    for (const std::int64_t id : processIds)
        m_files.push_back("/proc/" + std::to_string(id) + "/task/" + std::to_string(id) + "/schedstat");
}

std::int64_t QueueTime::ns() const
{
    std::int64_t sum = 0;
    for (const std::string& path : m_files) {
        std::ifstream file(path);
        std::int64_t ran = 0;
        std::int64_t waited = 0;
        if (file >> ran >> waited)
            sum += waited;
    }
    return sum;
}
