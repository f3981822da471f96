#include "practice/Check.h"
#include "practice/storage/TemporaryFolder.h"

#include "practice/storage/Database.h"
#include "practice/storage/MetaStore.h"
#include "practice/storage/Schema.h"
#include "practice/storage/StorageError.h"
#include "practice/storage/TradeStore.h"

#include <sqlite3.h>

#include <fstream>
#include <sys/stat.h>

using namespace practice;

namespace {

std::string errorOf(const std::filesystem::path& file)
{
    try {
        Database database(file);
    } catch (const StorageError& error) {
        return error.what();
    }
    return {};
}

mode_t permissions(const std::filesystem::path& file)
{
    struct stat status { };
    return ::stat(file.c_str(), &status) == 0 ? status.st_mode & 0777 : 0;
}

void runSql(const std::filesystem::path& file, const char* sql)
{
    sqlite3* handle = nullptr;
    REQUIRE(sqlite3_open(file.c_str(), &handle) == SQLITE_OK);
    const int result = sqlite3_exec(handle, sql, nullptr, nullptr, nullptr);
    sqlite3_close(handle);
    REQUIRE(result == SQLITE_OK);
}

bool oneLineNaming(const std::string& message, const std::filesystem::path& file)
{
    return message.find(file.string()) == 0 && message.find('\n') == std::string::npos;
}

} // namespace

TEST_CASE("a new file appears with its folder, is its owner's alone and has the newest format")
{
    const TemporaryFolder folder;
    const auto file = folder / "a" / "b.db";
    Database database(file);
    CHECK_EQ(permissions(file), mode_t(0600));
    CHECK_EQ(permissions(file.parent_path()), mode_t(0700));
    CHECK_EQ(permissions(file.string() + "-wal"), mode_t(0600));
    CHECK_EQ(database.schemaVersion(), static_cast<int>(schemaMigrations().size()));
}

TEST_CASE("a file that others could read is closed to them")
{
    const TemporaryFolder folder;
    const auto file = folder / "open.db";
    std::ofstream(file).close();
    std::filesystem::permissions(file, std::filesystem::perms(0644));
    Database database(file);
    CHECK_EQ(permissions(file), mode_t(0600));
}

TEST_CASE("commits wait for the disk and go through a write-ahead log")
{
    const TemporaryFolder folder;
    Database database(folder / "x.db");
    const auto text = [&](const char* sql) {
        Statement& query = database.statement(sql);
        std::string value;
        while (query.step())
            value = query.text(0);
        return value;
    };
    CHECK_EQ(text("PRAGMA journal_mode"), std::string("wal"));
    CHECK_EQ(text("PRAGMA synchronous"), std::string("2"));
    CHECK_EQ(text("PRAGMA foreign_keys"), std::string("1"));
}

TEST_CASE("what a transaction wrote is there after reopening only if it was committed")
{
    const TemporaryFolder folder;
    {
        Database database(folder / "x.db");
        MetaStore meta(database);
        {
            Transaction transaction(database);
            meta.setValue("kept", "1");
            transaction.commit();
        }
        {
            Transaction transaction(database);
            meta.setValue("dropped", "1");
        }
        CHECK(!meta.value("dropped"));
    }
    Database database(folder / "x.db");
    MetaStore meta(database);
    CHECK(meta.value("kept") == "1");
    CHECK(!meta.value("dropped"));
}

TEST_CASE("a text file is refused and stays as it is")
{
    const TemporaryFolder folder;
    const auto file = folder / "notes.txt";
    const std::string content(5000, 'x');
    std::ofstream(file) << content;
    CHECK(oneLineNaming(errorOf(file), file));
    std::ifstream in(file);
    CHECK(std::string(std::istreambuf_iterator<char>(in), {}) == content);
}

TEST_CASE("a database of another program is refused")
{
    const TemporaryFolder folder;
    const auto file = folder / "other.db";
    runSql(file, "CREATE TABLE recipes(name TEXT)");
    const std::string error = errorOf(file);
    CHECK(oneLineNaming(error, file));
    CHECK(error.find("another program") != std::string::npos);
}

TEST_CASE("a file of a newer version is refused and not touched")
{
    const TemporaryFolder folder;
    const auto file = folder / "new.db";
    {
        Database database(file);
    }
    runSql(file, "PRAGMA user_version=99");
    const std::string error = errorOf(file);
    CHECK(oneLineNaming(error, file));
    CHECK(error.find("newer version") != std::string::npos);
    runSql(file, "SELECT * FROM trades");
}

TEST_CASE("a second owner of the same file is refused until the first has gone")
{
    const TemporaryFolder folder;
    const auto file = folder / "x.db";
    {
        Database first(file);
        const std::string error = errorOf(file);
        CHECK(oneLineNaming(error, file));
        CHECK(error.find("in use") != std::string::npos);
    }
    CHECK_EQ(errorOf(file), std::string());
}

TEST_CASE("a file of the first format is brought up to date and keeps what it holds")
{
    const TemporaryFolder folder;
    const auto file = folder / "old.db";
    runSql(file,
        (schemaMigrations().front()
            + "INSERT INTO users VALUES('u', 'u@example.test', 'U', 'x');"
              "INSERT INTO accounts VALUES('a', 'u', 1, 'DEMO', '', 1, 1, 0, 'ACTIVE', 7, 7, 100, 7, 0);"
              "INSERT INTO trades VALUES('t', 'a', 'EURUSD', 'BUY', 'BUY_LIMIT', 'CANCELLED', 1, 0, 0, 1, 0, "
              "0,"
              " 0, 0, 0, 0, 5, 6, 6, 'NO_MARGIN', '');"
              "PRAGMA application_id=1414942802; PRAGMA user_version=1")
            .c_str());
    Database database(file);
    CHECK_EQ(database.schemaVersion(), static_cast<int>(schemaMigrations().size()));
    TradeStore trades(database);
    const auto history = trades.history("a", 10);
    REQUIRE(history.size() == 1);
    CHECK_EQ(history.front().id, std::string("t"));
}

TEST_CASE("the history is read through its index")
{
    const TemporaryFolder folder;
    Database database(folder / "x.db");
    Statement& query = database.statement("EXPLAIN QUERY PLAN " + TradeStore::historyQuery());
    query.bind(1, "a").bind(2, 10);
    std::string plan;
    while (query.step())
        plan += query.text(3) + '\n';
    CHECK(plan.find("trades_finished") != std::string::npos);
    CHECK(plan.find("TEMP B-TREE FOR ORDER BY") == std::string::npos);
}

TEST_CASE("folders and unreachable places are refused")
{
    const TemporaryFolder folder;
    CHECK(oneLineNaming(errorOf(folder.path()), folder.path()));
    CHECK(oneLineNaming(errorOf("/proc/none/x.db"), "/proc/none/x.db"));
}

TEST_CASE("a statement that failed can be used again")
{
    const TemporaryFolder folder;
    Database database(folder / "x.db");
    const char* sql = "INSERT INTO meta(key, value) VALUES(?1, 'v')";
    database.statement(sql).bind(1, "a").run();
    CHECK_THROWS(database.statement(sql).bind(1, "a").run(), StorageError);
    database.statement(sql).bind(1, "b").run();
    CHECK(MetaStore(database).value("b") == "v");
}

TEST_CASE("what cannot be stored is told with the file, and the reason without")
{
    const TemporaryFolder folder;
    Database database(folder / "x.db");
    database.execute("PRAGMA max_page_count=1");
    try {
        MetaStore(database).setValue("key", std::string(100'000, 'x'));
    } catch (const StorageError& error) {
        CHECK_EQ(std::string(error.what()), (folder / "x.db").string() + ": database or disk is full");
        CHECK_EQ(error.reason(), std::string("database or disk is full"));
        return;
    }
    CHECK(false);
}

TEST_CASE("texts keep their NUL bytes and quotes")
{
    const TemporaryFolder folder;
    Database database(folder / "x.db");
    MetaStore meta(database);
    const std::string wild("a\0b'\"; DROP TABLE meta; --", 26);
    meta.setValue(wild, wild);
    CHECK(meta.value(wild) == wild);
    CHECK(!meta.value("a"));
}

CHECK_MAIN()
