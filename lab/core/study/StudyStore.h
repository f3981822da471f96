#pragma once

#include "lab/core/study/SetResult.h"

#include <chrono>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace lab {

/// What a study's results hold for: what it is called in a message ("the script"), and a text or a hash that
/// is the same for the same.
using StudyIdentity = std::vector<std::pair<std::string, std::string>>;

/// "the script differs", "the prices differ": for a name of an identity.
[[nodiscard]] std::string differs(const std::string& name);

/// The results of a study in one SQLite file, for this process alone while it is open. What has been put is
/// lasting after a second at the latest, and at flush(). Whatever fails throws StudyError, which names the
/// file.
class StudyStore final {
public:
    /// A new file; there must be none. What cannot be made leaves none.
    [[nodiscard]] static StudyStore create(const std::filesystem::path& file, const StudyIdentity& identity);
    /// One that is there.
    [[nodiscard]] static StudyStore open(const std::filesystem::path& file);
    /// Whether there is a file with nothing in it: its making was cut short.
    [[nodiscard]] static bool isBlank(const std::filesystem::path& file);

    ~StudyStore();
    StudyStore(const StudyStore&) = delete;
    StudyStore& operator=(const StudyStore&) = delete;
    StudyStore(StudyStore&& other) noexcept;
    StudyStore& operator=(StudyStore&&) = delete;

    /// What differs between the file's identity and this one, in its words: the name of the first such entry;
    /// empty when nothing does.
    [[nodiscard]] std::string differenceTo(const StudyIdentity& identity) const;

    /// A word about the file as a whole, other than its identity; empty where there is none.
    [[nodiscard]] std::string note(std::string_view name) const;
    void setNote(std::string_view name, std::string_view value);

    /// Takes the place of a former result of the same set.
    void put(const SetResult& result, const std::vector<std::pair<std::string, std::string>>& inputs);
    /// The same for what is kept of a run that is no set, as bytes.
    void putRun(std::uint64_t number, std::string_view bytes);
    void flush();
    /// Whether something that was done has become lasting, now or in former times.
    [[nodiscard]] bool hasKept() const { return m_hasKept; }

    [[nodiscard]] std::map<std::uint64_t, std::string> runs() const;
    /// The sets that are done, without those that failed.
    [[nodiscard]] std::set<std::uint64_t> finished() const;
    /// All results by their numbers, ascending, without their days.
    [[nodiscard]] std::vector<SetResult> results() const;
    [[nodiscard]] std::vector<DayGain> daysOf(std::uint64_t number) const;

private:
    class Query;

    StudyStore(std::filesystem::path file, bool isNew);
    void layOut(const StudyIdentity& identity);
    void discard();
    void beginWriting();
    void flushNowAndThen();
    void execute(const char* sql);
    [[noreturn]] void fail() const;

    std::filesystem::path m_file;
    sqlite3* m_handle = nullptr;
    bool m_isWriting = false; ///< a transaction is open
    bool m_hasNews = false;   ///< something that was done is in it
    bool m_hasKept = false;
    std::chrono::steady_clock::time_point m_since;
};

} // namespace lab
