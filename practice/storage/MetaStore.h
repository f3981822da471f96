#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace practice {

class Database;

/// Loose facts about this installation, by key.
class MetaStore final {
public:
    explicit MetaStore(Database& database);

    [[nodiscard]] std::optional<std::string> value(std::string_view key);
    void setValue(std::string_view key, std::string_view value);

private:
    Database& m_database;
};

} // namespace practice
