#pragma once

#include "practice/core/Types.h"

#include <optional>
#include <string>
#include <string_view>

namespace practice {

class Database;

/// Somebody who can sign in.
struct User {
    std::string id;
    std::string email;
    std::string name;
    std::string passwordHash; ///< as crypt(3) writes it: method, cost, salt and digest
};

/// Users and the sessions they hold. Tokens are known here by their digest only, so a copy of the file
/// opens no session.
class UserStore final {
public:
    explicit UserStore(Database& database);

    void add(const User& user);
    /// E-mail addresses are compared without regard to the case of ASCII letters.
    [[nodiscard]] std::optional<User> byEmail(std::string_view email);

    /// Remembers a session. The user's sessions that are old, and not among the newest `sessionsPerUser`,
    /// end. No number of sign-ins ends a session that is not old.
    void addToken(std::string_view tokenHash, std::string_view userId, TimeMs now);
    /// The user whose session it is.
    [[nodiscard]] std::optional<std::string> userOfToken(std::string_view tokenHash);

    static constexpr int sessionsPerUser = 200;
    static constexpr TimeMs oldAge = 30 * dayMs;

private:
    Database& m_database;
};

} // namespace practice
