#pragma once

#include "lab/core/RunResult.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lab {

/// A JSON string with its quotes; one line of valid UTF-8 comes of any bytes. Safe within a script element
/// too: it holds no "<".
[[nodiscard]] std::string jsonString(std::string_view text);

/// A JSON object that is written in the order of its additions, a line for each, always the same bytes.
class JsonObject {
public:
    void text(std::string_view key, std::string_view value);
    void number(
        std::string_view key, std::optional<double> value); ///< null for nothing and what is not finite
    void count(std::string_view key, std::uint64_t value);
    void money(std::string_view key, practice::Cents amount); ///< with two decimals
    void flag(std::string_view key, bool value);
    void texts(std::string_view key, const std::vector<std::string>& values);
    void time(std::string_view key, std::optional<practice::TimeMs> value);
    void nothing(std::string_view key);
    /// `json` is JSON already.
    void raw(std::string_view key, std::string_view json);

    /// The whole object, with a line end behind it.
    [[nodiscard]] std::string document() const;
    /// The whole object as a value within another one, so many levels deep.
    [[nodiscard]] std::string value(int depth) const;

private:
    struct Member {
        std::string key;
        std::string json;
    };
    std::vector<Member> m_members;
};

} // namespace lab
