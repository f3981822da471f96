#include "practice/server/Target.h"

namespace practice {

namespace {

int hexValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

// Calls take(part) for each part; stops at the first false.
template <typename Take> bool forEachPart(std::string_view text, char separator, Take take)
{
    while (true) {
        const std::size_t end = text.find(separator);
        if (!take(text.substr(0, end)))
            return false;
        if (end == std::string_view::npos)
            return true;
        text.remove_prefix(end + 1);
    }
}

} // namespace

std::optional<std::string> percentDecode(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char byte = text[i];
        if (byte == '%') {
            const int high = i + 2 < text.size() ? hexValue(text[i + 1]) : -1;
            const int low = i + 2 < text.size() ? hexValue(text[i + 2]) : -1;
            if (high < 0 || low < 0)
                return std::nullopt;
            byte = static_cast<char>(high * 16 + low);
            i += 2;
        }
        if (byte == '\0')
            return std::nullopt;
        decoded.push_back(byte);
    }
    return decoded;
}

std::optional<Target> Target::parse(std::string_view text)
{
    text = text.substr(0, text.find('#'));
    if (text.empty() || text.front() != '/')
        return std::nullopt;
    Target target;
    const std::size_t mark = text.find('?');
    const bool pathGood = forEachPart(
        text.substr(1, mark == std::string_view::npos ? mark : mark - 1), '/', [&](std::string_view part) {
            auto decoded = percentDecode(part);
            if (decoded)
                target.segments.push_back(std::move(*decoded));
            return decoded.has_value();
        });
    if (!pathGood)
        return std::nullopt;
    if (mark == std::string_view::npos)
        return target;
    const bool queryGood = forEachPart(text.substr(mark + 1), '&', [&](std::string_view part) {
        const std::size_t equals = part.find('=');
        auto name = percentDecode(part.substr(0, equals));
        auto value = percentDecode(equals == std::string_view::npos ? "" : part.substr(equals + 1));
        if (!name || !value)
            return false;
        target.query.emplace(std::move(*name), std::move(*value));
        return true;
    });
    return queryGood ? std::optional(std::move(target)) : std::nullopt;
}

std::optional<std::string> Target::item(std::string_view name) const
{
    const auto found = query.find(name);
    return found == query.end() ? std::nullopt : std::optional(found->second);
}

} // namespace practice
