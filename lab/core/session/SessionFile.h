#pragma once

#include "lab/core/session/SessionEvent.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

namespace lab {

/// A recorded session cannot be read; the text is one line, "file:line: reason".
class SessionError final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads what `tavoran-practice --record` has written, event by event. The manual page of tavoran-practice
/// describes the lines.
class SessionFile final {
public:
    /// Reads the beginning. Throws SessionError.
    explicit SessionFile(const std::filesystem::path& path);

    [[nodiscard]] const SessionStart& start() const { return m_start; }

    /// The next event; nothing at the end. Throws SessionError for a damaged line. A last line without an
    /// end, as it is left by a platform that was killed, is no event and no damage.
    [[nodiscard]] std::optional<SessionEvent> next();

    /// Known at the end: the platform was ended in order, and did not break off.
    [[nodiscard]] bool isWhole() const { return m_isWhole; }
    /// The latest of all events so far.
    [[nodiscard]] practice::TimeMs lastTime() const { return m_lastTime; }

private:
    [[nodiscard]] bool readLine(std::string& line);
    void readStart();
    [[noreturn]] void fail(const std::string& reason) const;

    std::filesystem::path m_path;
    std::ifstream m_file;
    std::size_t m_line = 0;
    SessionStart m_start;
    practice::TimeMs m_lastTime = 0;
    bool m_isWhole = false;
};

} // namespace lab
