#pragma once

#include <chrono>
#include <string>

namespace lab {

/// "Running  42 %, 0:12 left", of at most 79 characters. `done` from 0 to 1; without a share that tells, how
/// long it takes is left out.
[[nodiscard]] std::string progressLine(
    const std::string& label, double done, std::chrono::steady_clock::duration elapsed);

/// A line on the standard error that tells how far something is, while a person looks on: on a terminal. In
/// a pipe or a file it says nothing.
class Progress final {
public:
    explicit Progress(std::string label);
    ~Progress(); ///< takes the line away
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// How much is done, from 0 to 1. Shown a few times a second at most.
    void show(double done);
    /// The label alone, where nobody knows how much is done.
    void showLabel();

private:
    std::string m_label;
    bool m_isSeen;
    bool m_isShown = false;
    std::chrono::steady_clock::time_point m_start;
    std::chrono::steady_clock::time_point m_shownAt;
};

} // namespace lab
