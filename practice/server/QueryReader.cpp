#include "practice/server/QueryReader.h"

#include "practice/server/Api.h"

#include <charconv>

namespace practice {

std::string requiredItem(const Target& target, std::string_view name)
{
    auto value = target.item(name);
    if (!value || value->empty())
        throw ApiError{400, "The query item \"" + std::string(name) + "\" is missing."};
    return std::move(*value);
}

int countItem(const Target& target, std::string_view name, int usual, int most)
{
    const auto text = target.item(name);
    if (!text)
        return usual;
    int count = 0;
    const char* end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, count);
    if (error != std::errc() || stop != end || count < 1 || count > most) {
        throw ApiError{400,
            "The query item \"" + std::string(name) + "\" must be a whole number from 1 to "
                + std::to_string(most) + '.'};
    }
    return count;
}

} // namespace practice
