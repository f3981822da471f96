#pragma once

#include "practice/core/Types.h"
#include "practice/storage/UserStore.h"

#include <optional>
#include <string>
#include <string_view>

namespace practice {

class Database;

/// Who is signed in. Sessions survive a restart.
class Sessions final {
public:
    explicit Sessions(Database& database);

    [[nodiscard]] UserStore& users() { return m_users; }

    /// Opens a session and returns its token, which is known to nobody else afterwards.
    [[nodiscard]] std::string open(std::string_view userId, TimeMs now);

    /// The user of a token; nothing when it opens no session.
    [[nodiscard]] std::optional<std::string> userOfToken(std::string_view token);
    /// The same for the value of an Authorization header, "Bearer " and the token.
    [[nodiscard]] std::optional<std::string> userOfHeader(std::string_view header);

private:
    UserStore m_users;
};

} // namespace practice
