#include "lab/core/study/StudyStore.h"

#include "lab/core/figures/FigureTable.h"
#include "lab/core/output/JsonObject.h"
#include "lab/core/output/Texts.h"
#include "lab/core/study/StudyError.h"

#include <charconv>
#include <sqlite3.h>

namespace lab {

namespace {

constexpr int formatNumber = 2;
constexpr std::size_t firstFigure = 6; // column of a row of results

std::string figureColumns(std::string_view type)
{
    std::string columns;
    for (const FigureRow& row : figureRows())
        columns.append(", \"").append(row.key).append("\"").append(type);
    return columns;
}

std::uint64_t fromHex(const std::string& text)
{
    std::uint64_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value, 16);
    return value;
}

} // namespace

std::string differs(const std::string& name)
{
    return name + (name.ends_with('s') ? " differ" : " differs");
}

/// A statement that is used once.
class StudyStore::Query final {
public:
    Query(const StudyStore& store, const std::string& sql)
        : m_store(store)
    {
        if (sqlite3_prepare_v2(
                store.m_handle, sql.data(), static_cast<int>(sql.size()), &m_statement, nullptr)
            != SQLITE_OK)
            store.fail();
    }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;
    ~Query() { sqlite3_finalize(m_statement); }

    Query& text(std::string_view value)
    {
        return bound(sqlite3_bind_text64(
            m_statement, ++m_next, value.data(), value.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
    }
    Query& blob(std::string_view value)
    {
        return bound(
            sqlite3_bind_blob64(m_statement, ++m_next, value.data(), value.size(), SQLITE_TRANSIENT));
    }
    Query& whole(std::uint64_t value)
    {
        return bound(sqlite3_bind_int64(m_statement, ++m_next, static_cast<sqlite3_int64>(value)));
    }
    Query& figure(const Figure& value)
    {
        return bound(value ? sqlite3_bind_double(m_statement, ++m_next, *value)
                           : sqlite3_bind_null(m_statement, ++m_next));
    }
    bool step()
    {
        const int result = sqlite3_step(m_statement);
        if (result != SQLITE_ROW && result != SQLITE_DONE)
            m_store.fail();
        return result == SQLITE_ROW;
    }
    [[nodiscard]] std::string textAt(int column) const
    {
        const auto* data = static_cast<const char*>(sqlite3_column_blob(m_statement, column));
        return data ? std::string(data, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column)))
                    : std::string();
    }
    [[nodiscard]] std::uint64_t wholeAt(int column) const
    {
        return static_cast<std::uint64_t>(sqlite3_column_int64(m_statement, column));
    }
    [[nodiscard]] bool isNullAt(int column) const
    {
        return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
    }
    [[nodiscard]] Figure figureAt(int column) const
    {
        return isNullAt(column) ? Figure() : Figure(sqlite3_column_double(m_statement, column));
    }

private:
    Query& bound(int result)
    {
        if (result != SQLITE_OK)
            m_store.fail();
        return *this;
    }

    const StudyStore& m_store;
    sqlite3_stmt* m_statement = nullptr;
    int m_next = 0;
};

StudyStore::StudyStore(std::filesystem::path file, bool isNew)
    : m_file(std::move(file))
{
    std::error_code error;
    if (isNew && std::filesystem::exists(m_file, error))
        throw StudyError(m_file.string() + " is there already");
    const int flags = SQLITE_OPEN_READWRITE | (isNew ? SQLITE_OPEN_CREATE : 0);
    if (sqlite3_open_v2(m_file.c_str(), &m_handle, flags, nullptr) != SQLITE_OK) {
        const std::string reason = m_handle ? sqlite3_errmsg(m_handle) : "out of memory";
        sqlite3_close(m_handle);
        throw StudyError(m_file.string() + ": " + reason);
    }
    try {
        execute("PRAGMA locking_mode = EXCLUSIVE; PRAGMA synchronous = NORMAL; BEGIN EXCLUSIVE");
        m_isWriting = true;
    } catch (...) {
        if (isNew && sqlite3_errcode(m_handle) != SQLITE_BUSY) // or else it is another process's
            discard();
        else
            sqlite3_close(m_handle);
        throw;
    }
}

StudyStore::StudyStore(StudyStore&& other) noexcept
    : m_file(std::move(other.m_file))
    , m_handle(std::exchange(other.m_handle, nullptr))
    , m_isWriting(other.m_isWriting)
    , m_hasNews(other.m_hasNews)
    , m_hasKept(other.m_hasKept)
    , m_since(other.m_since)
{
}

StudyStore::~StudyStore()
{
    if (!m_handle)
        return;
    if (m_isWriting)
        sqlite3_exec(m_handle, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(m_handle);
}

void StudyStore::layOut(const StudyIdentity& identity)
{
    execute("CREATE TABLE notes (name TEXT PRIMARY KEY, value TEXT NOT NULL)");
    execute("CREATE TABLE identity (name TEXT PRIMARY KEY, value TEXT NOT NULL)");
    execute("CREATE TABLE runs (number INTEGER PRIMARY KEY, bytes BLOB NOT NULL)");
    execute(("CREATE TABLE sets (number INTEGER PRIMARY KEY, status TEXT NOT NULL, reason TEXT, "
             "day_sharpe REAL, tick_print TEXT, decision_print TEXT"
        + figureColumns(" REAL") + ", inputs TEXT NOT NULL, day_gains BLOB)")
                .c_str());
    for (const auto& [name, value] : identity)
        Query(*this, "INSERT INTO identity VALUES (?, ?)").text(name).text(value).step();
    execute(("PRAGMA user_version = " + std::to_string(formatNumber)).c_str());
    flush();
}

void StudyStore::discard()
{
    sqlite3_close(std::exchange(m_handle, nullptr));
    std::error_code ignored;
    std::filesystem::remove(m_file, ignored);
    std::filesystem::remove(m_file.string() + "-journal", ignored);
}

StudyStore StudyStore::create(const std::filesystem::path& file, const StudyIdentity& identity)
{
    StudyStore store(file, true);
    try {
        store.layOut(identity);
    } catch (...) {
        store.discard();
        throw;
    }
    return store;
}

StudyStore StudyStore::open(const std::filesystem::path& file)
{
    StudyStore store(file, false);
    Query version(store, "PRAGMA user_version");
    if (!version.step() || version.wholeAt(0) != formatNumber)
        throw StudyError(file.string() + " holds no study of this version");
    Query kept(
        store, "SELECT EXISTS (SELECT * FROM sets WHERE status = 'done') OR EXISTS (SELECT * FROM runs)");
    store.m_hasKept = kept.step() && kept.wholeAt(0) != 0;
    return store;
}

bool StudyStore::isBlank(const std::filesystem::path& file)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        return false;
    try {
        const StudyStore store(file, false);
        Query tables(store, "SELECT count(*) FROM sqlite_master");
        return tables.step() && tables.wholeAt(0) == 0;
    } catch (const StudyError&) {
        return false; // whoever opens it says why
    }
}

std::string StudyStore::differenceTo(const StudyIdentity& identity) const
{
    for (const auto& [name, value] : identity) {
        Query query(*this, "SELECT value FROM identity WHERE name = ?");
        if (!query.text(name).step() || query.textAt(0) != value)
            return name;
    }
    return {};
}

std::string StudyStore::note(std::string_view name) const
{
    Query query(*this, "SELECT value FROM notes WHERE name = ?");
    return query.text(name).step() ? query.textAt(0) : std::string();
}

void StudyStore::setNote(std::string_view name, std::string_view value)
{
    Query(*this, "INSERT OR REPLACE INTO notes VALUES (?, ?)").text(name).text(value).step();
}

void StudyStore::put(const SetResult& result, const std::vector<std::pair<std::string, std::string>>& inputs)
{
    beginWriting();
    JsonObject names;
    for (const auto& [name, value] : inputs)
        names.text(name, value);
    static const std::string sql = [] {
        std::string places;
        for (std::size_t i = 0; i < figureRows().size(); ++i)
            places += ", ?";
        return "INSERT OR REPLACE INTO sets VALUES (?, ?, ?, ?, ?, ?" + places + ", ?, ?)";
    }();
    Query query(*this, sql);
    query.whole(result.number).text(result.failure ? "failed" : "done").text(result.failure.value_or(""));
    query.figure(result.daySharpe).text(hexText(result.tickPrint)).text(hexText(result.decisionPrint));
    for (std::size_t i = 0; i < figureRows().size(); ++i)
        query.figure(i < result.figures.size() ? result.figures[i] : Figure());
    query.text(names.value(0)).blob(bytesOf(result.days)).step();
    m_hasNews = m_hasNews || !result.failure;
    flushNowAndThen();
}

void StudyStore::putRun(std::uint64_t number, std::string_view bytes)
{
    beginWriting();
    Query(*this, "INSERT OR REPLACE INTO runs VALUES (?, ?)").whole(number).blob(bytes).step();
    m_hasNews = true;
    flushNowAndThen();
}

void StudyStore::beginWriting()
{
    if (m_isWriting)
        return;
    execute("BEGIN EXCLUSIVE");
    m_isWriting = true;
    m_since = std::chrono::steady_clock::now();
}

void StudyStore::flushNowAndThen()
{
    if (std::chrono::steady_clock::now() - m_since > std::chrono::seconds(1))
        flush();
}

void StudyStore::flush()
{
    if (!m_isWriting)
        return;
    execute("COMMIT");
    m_isWriting = false;
    m_hasKept = std::exchange(m_hasNews, false) || m_hasKept;
}

std::map<std::uint64_t, std::string> StudyStore::runs() const
{
    std::map<std::uint64_t, std::string> all;
    Query query(*this, "SELECT number, bytes FROM runs");
    while (query.step())
        all.emplace(query.wholeAt(0), query.textAt(1));
    return all;
}

std::set<std::uint64_t> StudyStore::finished() const
{
    std::set<std::uint64_t> numbers;
    Query query(*this, "SELECT number FROM sets WHERE status = 'done'");
    while (query.step())
        numbers.insert(query.wholeAt(0));
    return numbers;
}

std::vector<SetResult> StudyStore::results() const
{
    std::vector<SetResult> results;
    Query query(*this,
        "SELECT number, status, reason, day_sharpe, tick_print, decision_print" + figureColumns("")
            + " FROM sets ORDER BY number");
    while (query.step()) {
        SetResult& result = results.emplace_back();
        result.number = query.wholeAt(0);
        result.daySharpe = query.figureAt(3);
        result.tickPrint = fromHex(query.textAt(4));
        result.decisionPrint = fromHex(query.textAt(5));
        if (query.textAt(1) != "done") {
            result.failure = query.textAt(2);
            continue;
        }
        for (std::size_t i = 0; i < figureRows().size(); ++i)
            result.figures.push_back(query.figureAt(static_cast<int>(firstFigure + i)));
    }
    return results;
}

std::vector<DayGain> StudyStore::daysOf(std::uint64_t number) const
{
    Query query(*this, "SELECT day_gains FROM sets WHERE number = ?");
    return query.whole(number).step() ? daysFrom(query.textAt(0)) : std::vector<DayGain>();
}

void StudyStore::execute(const char* sql)
{
    if (sqlite3_exec(m_handle, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail();
}

void StudyStore::fail() const
{
    if (sqlite3_errcode(m_handle) == SQLITE_BUSY)
        throw StudyError(m_file.string() + " is in use by another process");
    throw StudyError(m_file.string() + ": " + sqlite3_errmsg(m_handle));
}

} // namespace lab
