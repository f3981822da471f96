#include "lab/core/output/ResultFolder.h"

#include "lab/core/output/DraftName.h"

#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace lab {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view freshEnd = ".new";
constexpr std::string_view formerEnd = ".old";

[[noreturn]] void fail(const fs::path& place, int error)
{
    throw OutputError("cannot write " + place.string() + ": " + std::generic_category().message(error));
}

/// A file descriptor that is closed at the end.
class Descriptor {
public:
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }
    [[nodiscard]] int number() const { return m_number; }
    /// The error of closing, 0 without one: some file systems tell only then that the disk is full.
    [[nodiscard]] int close() { return ::close(std::exchange(m_number, -1)) == 0 ? 0 : errno; }

private:
    int m_number;
};

/// Writes a new file, whole and on the disk. `shown` is the name that a message tells.
void writeWhole(const fs::path& place, std::string_view bytes, const fs::path& shown)
{
    Descriptor file(::open(place.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (file.number() < 0)
        fail(shown, errno);
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.number(), bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            fail(shown, errno);
        if (count > 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    if (::fsync(file.number()) != 0)
        fail(shown, errno);
    if (const int error = file.close())
        fail(shown, error);
}

/// The folders on the way to this one that are not there, made; the first of them is remembered.
class MadeFolders {
public:
    explicit MadeFolders(const fs::path& folder)
    {
        std::error_code error;
        for (fs::path place = fs::absolute(folder, error);
             !place.empty() && !fs::exists(fs::symlink_status(place, error)); place = place.parent_path())
            m_made.push_back(place);
        fs::create_directories(folder, error);
        if (error) {
            removeAll();
            fail(folder, error.value());
        }
        if (!fs::is_directory(folder, error))
            fail(folder, ENOTDIR);
    }
    void removeAll()
    {
        std::error_code ignored;
        for (const fs::path& place : m_made)
            fs::remove(place, ignored); // deepest first; one that holds something stays
    }

private:
    std::vector<fs::path> m_made;
};

/// New files beside those that they will replace, and what can be undone of putting them into place.
class Exchange {
public:
    explicit Exchange(const fs::path& folder)
        : m_folder(folder)
    {
    }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;
    ~Exchange()
    {
        if (m_isDone)
            return;
        for (Step& step : m_steps)
            undo(step);
    }

    void write(const std::string& name, std::string_view bytes)
    {
        const fs::path place = m_folder / name;
        std::error_code error;
        if (fs::is_directory(fs::symlink_status(place, error)))
            fail(place, EISDIR);
        // The room that a killed process has taken with its own may be needed here.
        removeLeftDrafts(place, {freshEnd});
        Step& step = m_steps.emplace_back(Step{place, hidden(place, freshEnd), hidden(place, formerEnd)});
        ::unlink(step.fresh.c_str()); // left by a process of this number that was killed
        step.hasFresh = true;
        writeWhole(step.fresh, bytes, place);
    }

    void putIntoPlace()
    {
        for (Step& step : m_steps)
            keepFormer(step);
        for (Step& step : m_steps) {
            if (::rename(step.fresh.c_str(), step.place.c_str()) != 0)
                fail(step.place, errno);
            step.hasFresh = false;
            step.isInPlace = true;
        }
        settleFolder(m_folder);
        m_isDone = true;
        for (const Step& step : m_steps) {
            if (step.hasFormer)
                ::unlink(step.former.c_str());
            removeLeftDrafts(step.place, {formerEnd});
        }
    }

private:
    struct Step {
        fs::path place;
        fs::path fresh;
        fs::path former;
        bool hasFresh = false;
        bool hasFormer = false; ///< `former` is what was in place
        bool isInPlace = false; ///< the new file is in place
    };

    static fs::path hidden(const fs::path& place, std::string_view end)
    {
        fs::path name = draftOf(place);
        name += end;
        return name;
    }

    static void keepFormer(Step& step)
    {
        ::unlink(step.former.c_str());
        // A second name of the former file, so that its place is never empty; where the file system has no
        // such thing, the file itself.
        if (::link(step.place.c_str(), step.former.c_str()) == 0) {
            step.hasFormer = true;
            return;
        }
        if (errno == ENOENT)
            return;
        if (::rename(step.place.c_str(), step.former.c_str()) != 0)
            fail(step.place, errno);
        step.hasFormer = true;
    }

    static void undo(const Step& step)
    {
        if (step.hasFresh)
            ::unlink(step.fresh.c_str());
        if (step.hasFormer) {
            // Two names of the same file: the rename does nothing, so the second one goes.
            static_cast<void>(::rename(step.former.c_str(), step.place.c_str()));
            ::unlink(step.former.c_str());
        } else if (step.isInPlace) {
            ::unlink(step.place.c_str());
        }
    }

    fs::path m_folder;
    std::vector<Step> m_steps;
    bool m_isDone = false;
};

/// Whether this is the name of a file of a result on its way, by a process that was killed.
bool isLeft(const std::string& name)
{
    return leftDraftOf(name, freshEnd) || leftDraftOf(name, formerEnd);
}

} // namespace

bool holdsNothing(const fs::path& folder)
{
    std::error_code error;
    for (fs::directory_iterator file(folder, error), last; !error && file != last; file.increment(error)) {
        if (!isLeft(file->path().filename().string()))
            return false;
    }
    return !error;
}

void settleFolder(const fs::path& folder)
{
    const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.number() >= 0)
        static_cast<void>(::fsync(descriptor.number()));
}

ResultFolder::ResultFolder(fs::path folder)
    : m_folder(folder.empty() ? fs::path(".") : std::move(folder))
{
}

void ResultFolder::add(std::string name, std::string bytes)
{
    if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos)
        throw OutputError("not the name of a file: " + name);
    for (File& file : m_files) {
        if (file.name == name) {
            file.bytes = std::move(bytes);
            return;
        }
    }
    m_files.push_back({std::move(name), std::move(bytes)});
}

void ResultFolder::commit()
{
    MadeFolders folders(m_folder);
    try {
        Exchange exchange(m_folder);
        for (const File& file : m_files)
            exchange.write(file.name, file.bytes);
        exchange.putIntoPlace();
    } catch (...) {
        folders.removeAll();
        throw;
    }
}

} // namespace lab
