#pragma once

#include "lab/core/RunResult.h"

#include <QString>

#include <cstdint>
#include <deque>
#include <vector>

namespace lab {

/// The lines of a run, of which the first and the last are kept when there are too many.
class Journal final {
public:
    /// Of each, the beginning and the end: lines, and bytes of them.
    static constexpr std::size_t mostLines = 5'000;
    static constexpr std::size_t mostBytes = 1'000'000;

    /// A line feed becomes a blank, as in the terminal's lists.
    void add(practice::TimeMs time, const QString& text);

    /// How many lines there were.
    [[nodiscard]] std::uint64_t count() const { return m_count; }
    [[nodiscard]] std::uint64_t leftOut() const { return m_leftOut; }
    /// What was kept, in its order, with a line that counts what is missing where it is missing, at
    /// the time of the last line of that.
    [[nodiscard]] std::vector<JournalLine> lines() const;

private:
    std::vector<JournalLine> m_first;
    std::deque<JournalLine> m_last;
    std::size_t m_firstBytes = 0;
    std::size_t m_lastBytes = 0;
    std::uint64_t m_count = 0;
    std::uint64_t m_leftOut = 0;
    practice::TimeMs m_leftOutUntil = 0;
};

} // namespace lab
