#include "lab/core/output/JsonObject.h"

#include "lab/core/output/Texts.h"

#include <cstddef>

namespace lab {

std::string jsonString(std::string_view text)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string json = "\"";
    for (const char letter : oneLine(text)) {
        if (letter == '"' || letter == '\\') {
            json += '\\';
            json += letter;
        } else if (letter == '<' || letter == '>' || letter == '&') {
            json += "\\u00";
            json += digits[static_cast<std::size_t>(letter) >> 4U];
            json += digits[static_cast<std::size_t>(letter) & 15U];
        } else {
            json += letter;
        }
    }
    return json += '"';
}

void JsonObject::raw(std::string_view key, std::string_view json)
{
    m_members.push_back({jsonString(key), std::string(json)});
}

void JsonObject::nothing(std::string_view key)
{
    raw(key, "null");
}

void JsonObject::text(std::string_view key, std::string_view value)
{
    raw(key, jsonString(value));
}

void JsonObject::number(std::string_view key, std::optional<double> value)
{
    raw(key, value ? shortestText(*value) : "null");
}

void JsonObject::count(std::string_view key, std::uint64_t value)
{
    raw(key, std::to_string(value));
}

void JsonObject::money(std::string_view key, practice::Cents amount)
{
    raw(key, practice::decimalText(amount));
}

void JsonObject::flag(std::string_view key, bool value)
{
    raw(key, value ? "true" : "false");
}

void JsonObject::time(std::string_view key, std::optional<practice::TimeMs> value)
{
    raw(key, value ? jsonString(isoTime(*value)) : "null");
}

void JsonObject::texts(std::string_view key, const std::vector<std::string>& values)
{
    std::string json = "[";
    for (const std::string& value : values) {
        if (json.size() > 1)
            json += ", ";
        json += jsonString(value);
    }
    raw(key, json + "]");
}

std::string JsonObject::value(int depth) const
{
    if (m_members.empty())
        return "{}";
    const std::string indent(2 * static_cast<std::size_t>(depth), ' ');
    std::string json = "{";
    for (const Member& member : m_members) {
        json += json.size() > 1 ? ",\n" : "\n";
        json += indent + "  " + member.key + ": " + member.json;
    }
    return json += "\n" + indent + "}";
}

std::string JsonObject::document() const
{
    return value(0) + "\n";
}

} // namespace lab
