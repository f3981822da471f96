#include "practice/server/RecordFile.h"

#include "practice/server/Options.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace practice {

namespace {

constexpr std::chrono::milliseconds interval{500};
constexpr std::size_t muchWaiting = std::size_t{1} << 20; // is written without waiting for its time

std::string reasonOf(int error)
{
    return std::generic_category().message(error);
}

} // namespace

void RecordFile::requireNew(const std::filesystem::path& path)
{
    std::error_code error;
    if (std::filesystem::exists(std::filesystem::symlink_status(path, error)))
        throw UsageError("--record " + path.string() + ": there is such a file already; it stays as it is");
}

RecordFile::RecordFile(std::filesystem::path path, Complaint complaint)
    : m_path(std::move(path))
    , m_complaint(std::move(complaint))
{
    requireNew(m_path);
    m_file = ::open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (m_file < 0)
        throw UsageError("--record " + m_path.string() + ": " + reasonOf(errno));
    m_thread = std::thread([this] { writeOnAndOn(); });
}

RecordFile::~RecordFile()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_wake.notify_one();
    m_thread.join();
    ::close(m_file);
}

void RecordFile::add(std::string_view text)
{
    bool isMuch = false;
    {
        const std::lock_guard lock(m_mutex);
        if (m_isOver || m_isFull)
            return;
        m_isFull = m_waiting.size() + text.size() > mostWaiting;
        if (!m_isFull)
            m_waiting += text;
        isMuch = m_isFull || m_waiting.size() > muchWaiting;
    }
    if (isMuch)
        m_wake.notify_one();
}

void RecordFile::writeOnAndOn()
{
    std::string text;
    std::unique_lock lock(m_mutex);
    for (bool goesOn = true; goesOn;) {
        m_wake.wait_for(
            lock, interval, [this] { return m_isEnding || m_isFull || m_waiting.size() > muchWaiting; });
        goesOn = !m_isEnding;
        const bool wasFull = m_isFull;
        text.clear();
        text.swap(m_waiting);
        lock.unlock();
        const bool written = write(text);
        const int error = errno;
        lock.lock();
        if (!written || wasFull) {
            m_isOver = true;
            m_waiting = {};
            lock.unlock();
            giveUp(written ? "the disk is too slow" : reasonOf(error));
            return;
        }
    }
}

bool RecordFile::write(std::string_view text) const
{
    while (!text.empty()) {
        const ssize_t count = ::write(m_file, text.data(), text.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

void RecordFile::giveUp(const std::string& reason)
{
    m_complaint(m_path.string() + ": " + reason + "; nothing more is recorded");
}

} // namespace practice
