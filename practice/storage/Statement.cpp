#include "practice/storage/Statement.h"

#include "practice/storage/StorageError.h"

#include <sqlite3.h>

#include <utility>

namespace practice {

StorageError errorOf(sqlite3* database)
{
    const char* file = database ? sqlite3_db_filename(database, "main") : nullptr;
    return {file ? file : "", sqlite3_errmsg(database)};
}

Statement::Statement(sqlite3* database, std::string_view sql)
    : m_database(database)
{
    check(sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &m_statement, nullptr));
}

Statement::~Statement()
{
    sqlite3_finalize(m_statement);
}

Statement::Statement(Statement&& other) noexcept
    : m_database(other.m_database)
    , m_statement(std::exchange(other.m_statement, nullptr))
{
}

Statement& Statement::bind(int parameter, std::string_view text)
{
    // A view without data is still an empty text, not NULL.
    const char* data = text.data() ? text.data() : "";
    check(sqlite3_bind_text64(m_statement, parameter, data, text.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
    return *this;
}

Statement& Statement::bind(int parameter, std::int64_t value)
{
    check(sqlite3_bind_int64(m_statement, parameter, value));
    return *this;
}

Statement& Statement::bind(int parameter, double value)
{
    check(sqlite3_bind_double(m_statement, parameter, value));
    return *this;
}

Statement& Statement::bindNull(int parameter)
{
    check(sqlite3_bind_null(m_statement, parameter));
    return *this;
}

bool Statement::step()
{
    const int result = sqlite3_step(m_statement);
    if (result == SQLITE_ROW)
        return true;
    if (result != SQLITE_DONE) {
        const StorageError error = errorOf(m_database);
        reset();
        throw error;
    }
    reset();
    return false;
}

void Statement::run()
{
    while (step()) { }
}

void Statement::reset()
{
    // Its result is ignored: it repeats the error of the last step, which was reported then.
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
}

std::string Statement::text(int column) const
{
    const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column));
    return data ? std::string(data, size) : std::string();
}

std::int64_t Statement::integer(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

double Statement::real(int column) const
{
    return sqlite3_column_double(m_statement, column);
}

bool Statement::isNull(int column) const
{
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

std::optional<std::int64_t> Statement::optionalInteger(int column) const
{
    return isNull(column) ? std::nullopt : std::optional(integer(column));
}

std::optional<double> Statement::optionalReal(int column) const
{
    return isNull(column) ? std::nullopt : std::optional(real(column));
}

void Statement::check(int result) const
{
    if (result != SQLITE_OK)
        throw errorOf(m_database);
}

} // namespace practice
