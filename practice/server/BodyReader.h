#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace practice {

/// Reads the fields of a request body that is a JSON object. A field that is missing or of the wrong type
/// throws an ApiError 400 that names it. Unknown fields are ignored.
class BodyReader final {
public:
    /// Throws ApiError 400 when the text is not a JSON object.
    explicit BodyReader(const std::string& body);

    /// An absent field or null counts as absent.
    [[nodiscard]] std::optional<std::string> optionalText(std::string_view name) const;
    /// Must be there and must not be empty.
    [[nodiscard]] std::string text(std::string_view name) const;

    /// A number, or a text that holds one; finite and of a size that prices and volumes can have.
    [[nodiscard]] std::optional<double> optionalNumber(std::string_view name) const;
    [[nodiscard]] double number(std::string_view name) const;

    /// nullptr when absent.
    [[nodiscard]] const nlohmann::json* find(std::string_view name) const;

private:
    nlohmann::json m_object;
};

/// A JSON number or a text that holds one, within +-1e15; nothing for anything else.
[[nodiscard]] std::optional<double> numberOf(const nlohmann::json& value);

} // namespace practice
