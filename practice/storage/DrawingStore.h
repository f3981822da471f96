#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace practice {

class Database;

/// A line or shape that a trader placed on a chart.
struct Drawing {
    std::string id;
    std::string accountId; ///< empty when the chart had no account
    std::string symbol;
    std::string tool;
    std::string color;
    std::string points; ///< JSON text, as it is given back
};

/// Drawings, kept per user, symbol and account. A user finds none of another user's drawings.
class DrawingStore final {
public:
    explicit DrawingStore(Database& database);

    /// In the order in which they were placed.
    [[nodiscard]] std::vector<Drawing> list(
        std::string_view userId, std::string_view symbol, std::string_view accountId);
    [[nodiscard]] std::optional<Drawing> find(std::string_view userId, std::string_view id);
    void add(std::string_view userId, const Drawing& drawing);
    /// Stores new points and colour of the drawing with this id.
    void update(std::string_view userId, const Drawing& drawing);
    /// False when there is none.
    [[nodiscard]] bool remove(std::string_view userId, std::string_view id);

private:
    Database& m_database;
};

} // namespace practice
