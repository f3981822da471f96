#pragma once

#include <condition_variable>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace practice {

/// A new file that lines are added to. A thread of its own writes them, at least once a second: whoever adds
/// never waits for a disk.
class RecordFile final {
public:
    /// What waits to be written at most; a disk that is so far behind ends the recording.
    static constexpr std::size_t mostWaiting = std::size_t{64} << 20;

    using Complaint = std::function<void(const std::string&)>;

    /// Throws UsageError when there is such a file already, or none can be created. `complaint` is told
    /// once, on the writing thread, when writing fails; everything else is left out then.
    RecordFile(std::filesystem::path path, Complaint complaint);
    /// Writes what is left.
    ~RecordFile();
    RecordFile(const RecordFile&) = delete;
    RecordFile& operator=(const RecordFile&) = delete;

    void add(std::string_view text);

    /// Refuses a file that is there already. Throws UsageError.
    static void requireNew(const std::filesystem::path& path);

private:
    void writeOnAndOn();
    [[nodiscard]] bool write(std::string_view text) const;
    void giveUp(const std::string& reason);

    std::filesystem::path m_path;
    Complaint m_complaint;
    int m_file = -1;
    std::mutex m_mutex; ///< of what follows
    std::condition_variable m_wake;
    std::string m_waiting;
    bool m_isFull = false;
    bool m_isOver = false; ///< nothing is taken any more
    bool m_isEnding = false;
    std::thread m_thread;
};

} // namespace practice
