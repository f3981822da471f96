#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace practice {

/// Undoes %XX. Nothing when an escape is broken or hides a NUL byte.
[[nodiscard]] std::optional<std::string> percentDecode(std::string_view text);

/// The decoded address of a request: "/api/trades/close/a%2Fb?x=1" has the segments api, trades, close and
/// "a/b". Segments are names and never walk a tree: ".." is an ordinary text.
struct Target {
    std::vector<std::string> segments;
    std::map<std::string, std::string, std::less<>> query; ///< of a repeated name the first one counts

    /// Nothing for an address that is broken or does not start with "/".
    [[nodiscard]] static std::optional<Target> parse(std::string_view text);
    /// The query item; nothing when it is absent.
    [[nodiscard]] std::optional<std::string> item(std::string_view name) const;
};

} // namespace practice
