#include "practice/storage/Database.h"

#include "practice/storage/Schema.h"
#include "practice/storage/StorageError.h"

#include <sqlite3.h>

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace practice {

namespace {

// Marks our files, so that somebody else's database is never taken over. The bytes read "TVPR".
constexpr int applicationId = 0x54565052;
constexpr int busyTimeoutMs = 1000;

std::string reasonOf(int error)
{
    return std::error_code(error, std::generic_category()).message();
}

// SQLite would create the file with the usual permissions; it holds password hashes and must be the
// owner's from its first moment. Its side files take over the permissions of the main one.
void makePrivateFile(const std::filesystem::path& file)
{
    if (file.has_parent_path() && !std::filesystem::exists(file.parent_path())) {
        std::error_code error;
        std::filesystem::create_directories(file.parent_path(), error);
        if (!error) {
            std::filesystem::permissions(file.parent_path(), std::filesystem::perms::owner_all, error);
        }
        if (error)
            throw StorageError(file.string() + ": its folder cannot be made: " + error.message());
    }
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0)
        throw StorageError(file.string() + ": " + reasonOf(errno));
    struct stat status { };
    const bool regular = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    const bool restricted = regular && ((status.st_mode & 077) == 0 || ::fchmod(descriptor, 0600) == 0);
    ::close(descriptor);
    if (!regular)
        throw StorageError(file.string() + ": not a regular file");
    if (!restricted)
        throw StorageError(file.string() + ": cannot be made private to its owner");
}

} // namespace

Database::Database(const std::filesystem::path& file)
    : m_file(file)
{
    makePrivateFile(file);
    const int result
        = sqlite3_open_v2(file.c_str(), &m_handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    try {
        if (result != SQLITE_OK)
            throw errorOf(m_handle);
        configure();
        migrate();
    } catch (const StorageError& error) {
        const bool busy = sqlite3_errcode(m_handle) == SQLITE_BUSY;
        m_statements.clear();
        sqlite3_close(m_handle);
        throw StorageError(file.string() + ": " + (busy ? "in use by another program" : error.reason()));
    }
}

Database::~Database()
{
    m_statements.clear();
    sqlite3_close(m_handle);
}

void Database::configure()
{
    sqlite3_busy_timeout(m_handle, busyTimeoutMs);
    // Exclusive, and set before the first access, so that the lock is held until the process ends in whatever
    // way.
    execute("PRAGMA locking_mode=EXCLUSIVE; PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;"
            "PRAGMA foreign_keys=ON; BEGIN IMMEDIATE; COMMIT");
}

int Database::schemaVersion()
{
    Statement query(m_handle, "PRAGMA user_version");
    return query.step() ? static_cast<int>(query.integer(0)) : 0;
}

void Database::migrate()
{
    const auto number = [this](const char* sql) {
        Statement query(m_handle, sql);
        return query.step() ? query.integer(0) : 0;
    };
    const bool empty = number("SELECT count(*) FROM sqlite_master") == 0;
    if (!empty && number("PRAGMA application_id") != applicationId)
        throw StorageError("a database of another program");
    const auto& steps = schemaMigrations();
    const int newest = static_cast<int>(steps.size());
    const int found = schemaVersion();
    if (found < 0 || found > newest) {
        throw StorageError("written by a newer version (format " + std::to_string(found)
            + ", this program knows up to " + std::to_string(newest) + ")");
    }
    if (found == newest)
        return;
    Transaction transaction(*this);
    for (int version = found; version < newest; ++version)
        execute(steps[static_cast<std::size_t>(version)]);
    execute("PRAGMA application_id=" + std::to_string(applicationId)
        + "; PRAGMA user_version=" + std::to_string(newest));
    transaction.commit();
}

Statement& Database::statement(std::string_view sql)
{
    auto found = m_statements.find(sql);
    if (found == m_statements.end())
        found = m_statements.emplace(std::string(sql), Statement(m_handle, sql)).first;
    found->second.reset();
    return found->second;
}

void Database::execute(const std::string& sql)
{
    if (sqlite3_exec(m_handle, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw errorOf(m_handle);
}

Transaction::Transaction(Database& database)
    : m_database(database)
{
    m_database.statement("BEGIN IMMEDIATE").run();
}

Transaction::~Transaction()
{
    // Some errors end the transaction by themselves; then there is nothing left to roll back.
    if (m_open && sqlite3_get_autocommit(m_database.m_handle) == 0)
        sqlite3_exec(m_database.m_handle, "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit()
{
    m_database.statement("COMMIT").run();
    m_open = false;
}

} // namespace practice
