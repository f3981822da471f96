#include "practice/storage/UserStore.h"

#include "practice/storage/Database.h"

namespace practice {

UserStore::UserStore(Database& database)
    : m_database(database)
{
}

void UserStore::add(const User& user)
{
    m_database.statement("INSERT INTO users(id, email, name, password_hash) VALUES(?1, ?2, ?3, ?4)")
        .bind(1, user.id)
        .bind(2, user.email)
        .bind(3, user.name)
        .bind(4, user.passwordHash)
        .run();
}

std::optional<User> UserStore::byEmail(std::string_view email)
{
    std::optional<User> found;
    Statement& query
        = m_database.statement("SELECT id, email, name, password_hash FROM users WHERE email = ?1");
    query.bind(1, email);
    while (query.step())
        found = User{query.text(0), query.text(1), query.text(2), query.text(3)};
    return found;
}

void UserStore::addToken(std::string_view tokenHash, std::string_view userId, TimeMs now)
{
    Transaction transaction(m_database);
    m_database.statement("INSERT INTO tokens(hash, user_id, created_at) VALUES(?1, ?2, ?3)")
        .bind(1, tokenHash)
        .bind(2, userId)
        .bind(3, now)
        .run();
    m_database
        .statement("DELETE FROM tokens WHERE user_id = ?1 AND created_at < ?4 AND hash NOT IN (SELECT hash "
                   "FROM tokens"
                   " WHERE user_id = ?1 ORDER BY hash = ?3 DESC, created_at DESC LIMIT ?2)")
        .bind(1, userId)
        .bind(2, sessionsPerUser)
        .bind(3, tokenHash)
        .bind(4, now - oldAge)
        .run();
    transaction.commit();
}

std::optional<std::string> UserStore::userOfToken(std::string_view tokenHash)
{
    std::optional<std::string> found;
    Statement& query = m_database.statement("SELECT user_id FROM tokens WHERE hash = ?1");
    query.bind(1, tokenHash);
    while (query.step())
        found = query.text(0);
    return found;
}

} // namespace practice
