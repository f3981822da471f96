#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace practice {

class StorageError;

/// What the database's last call has failed with.
[[nodiscard]] StorageError errorOf(sqlite3* database);

/// One prepared SQL statement. Parameters and columns are counted as SQLite does: parameters from 1,
/// columns from 0. Every failure throws StorageError.
class Statement final {
public:
    Statement(sqlite3* database, std::string_view sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    Statement(Statement&& other) noexcept;
    Statement& operator=(Statement&&) = delete;

    Statement& bind(int parameter, std::string_view text);
    Statement& bind(int parameter, std::int64_t value);
    Statement& bind(int parameter, int value) { return bind(parameter, std::int64_t{value}); }
    Statement& bind(int parameter, double value);
    Statement& bind(int parameter, bool value) { return bind(parameter, std::int64_t{value ? 1 : 0}); }
    // A string literal would otherwise prefer the conversion to bool.
    Statement& bind(int parameter, const char* text) { return bind(parameter, std::string_view(text)); }
    Statement& bindNull(int parameter);

    template <typename T> Statement& bind(int parameter, const std::optional<T>& value)
    {
        return value ? bind(parameter, *value) : bindNull(parameter);
    }

    /// Advances to the next row; false after the last one, when the statement is ready to run again.
    bool step();
    /// Runs a statement that gives no rows and makes it ready to run again.
    void run();

    /// Makes the statement ready to run again before its last row was read.
    void reset();

    [[nodiscard]] std::string text(int column) const;
    [[nodiscard]] std::int64_t integer(int column) const;
    [[nodiscard]] double real(int column) const;
    [[nodiscard]] bool isNull(int column) const;
    [[nodiscard]] std::optional<std::int64_t> optionalInteger(int column) const;
    [[nodiscard]] std::optional<double> optionalReal(int column) const;

private:
    void check(int result) const;

    sqlite3* m_database;
    sqlite3_stmt* m_statement = nullptr;
};

} // namespace practice
