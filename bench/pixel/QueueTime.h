#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// How long the main threads of some processes have been ready to run while others had the processors. On a
/// busy machine it tells what of a delay is the machine's, at most: processes that have waited at the same
/// time are counted twice, so that what is left of a delay is a lower bound of their own.
class QueueTime final {
public:
    explicit QueueTime(const std::vector<std::int64_t>& processIds);

    /// In all so far, in ns; 0 where the kernel keeps no account of it.
    [[nodiscard]] std::int64_t ns() const;

private:
    std::vector<std::string> m_files;
};
