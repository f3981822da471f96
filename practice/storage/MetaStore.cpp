#include "practice/storage/MetaStore.h"

#include "practice/storage/Database.h"

namespace practice {

MetaStore::MetaStore(Database& database)
    : m_database(database)
{
}

std::optional<std::string> MetaStore::value(std::string_view key)
{
    std::optional<std::string> found;
    Statement& query = m_database.statement("SELECT value FROM meta WHERE key = ?1");
    query.bind(1, key);
    while (query.step())
        found = query.text(0);
    return found;
}

void MetaStore::setValue(std::string_view key, std::string_view value)
{
    m_database.statement("INSERT OR REPLACE INTO meta(key, value) VALUES(?1, ?2)")
        .bind(1, key)
        .bind(2, value)
        .run();
}

} // namespace practice
