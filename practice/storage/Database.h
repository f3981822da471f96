#pragma once

#include "practice/storage/Statement.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

struct sqlite3;

namespace practice {

/// The one file that holds everything the platform must not lose.
///
/// Opening creates the file (readable by its owner alone) or brings an older one up to date, and keeps it
/// for this process alone: a second platform on the same file is refused. What a finished Transaction
/// wrote survives a crash of the process and of the machine.
class Database final {
public:
    /// Throws StorageError with one line that names the file.
    explicit Database(const std::filesystem::path& file);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// A statement that is prepared at its first use and kept, ready to run. Asking for the same text again
    /// while its rows are being read starts it anew.
    [[nodiscard]] Statement& statement(std::string_view sql);

    /// Runs one or several statements without parameters.
    void execute(const std::string& sql);

    [[nodiscard]] int schemaVersion();

private:
    friend class Transaction;

    void configure();
    void migrate();

    std::filesystem::path m_file;
    sqlite3* m_handle = nullptr;
    std::map<std::string, Statement, std::less<>> m_statements;
};

/// Everything written during its life becomes lasting at commit(); without that it is undone.
class Transaction final {
public:
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// Returns once the data is on the disk; throws StorageError when it is not.
    void commit();

private:
    Database& m_database;
    bool m_open = true;
};

} // namespace practice
