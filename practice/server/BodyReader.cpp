#include "practice/server/BodyReader.h"

#include "practice/server/Api.h"

#include <charconv>
#include <cmath>

namespace practice {

namespace {

constexpr double largestNumber = 1e15;

[[noreturn]] void refuse(std::string_view name, std::string_view wish)
{
    throw ApiError{400, '"' + std::string(name) + "\" " + std::string(wish)};
}

} // namespace

std::optional<double> numberOf(const nlohmann::json& value)
{
    double number = 0;
    if (value.is_number()) {
        number = value.get<double>();
    } else if (value.is_string()) {
        const auto& text = value.get_ref<const std::string&>();
        const char* end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, number);
        if (error != std::errc() || stop != end)
            return std::nullopt;
    } else {
        return std::nullopt;
    }
    return std::isfinite(number) && std::abs(number) <= largestNumber ? std::optional(number) : std::nullopt;
}

BodyReader::BodyReader(const std::string& body)
    : m_object(nlohmann::json::parse(body, nullptr, false))
{
    if (!m_object.is_object())
        throw ApiError{400, "The request body must be a JSON object."};
}

const nlohmann::json* BodyReader::find(std::string_view name) const
{
    const auto found = m_object.find(name);
    return found == m_object.end() || found->is_null() ? nullptr : &*found;
}

std::optional<std::string> BodyReader::optionalText(std::string_view name) const
{
    const nlohmann::json* value = find(name);
    if (!value)
        return std::nullopt;
    if (!value->is_string())
        refuse(name, "must be a text.");
    return value->get<std::string>();
}

std::string BodyReader::text(std::string_view name) const
{
    auto value = optionalText(name);
    if (!value || value->empty())
        refuse(name, "is missing.");
    return std::move(*value);
}

std::optional<double> BodyReader::optionalNumber(std::string_view name) const
{
    const nlohmann::json* value = find(name);
    if (!value)
        return std::nullopt;
    const auto number = numberOf(*value);
    if (!number)
        refuse(name, "must be a number, for example 1.25.");
    return number;
}

double BodyReader::number(std::string_view name) const
{
    const auto value = optionalNumber(name);
    if (!value)
        refuse(name, "is missing.");
    return *value;
}

} // namespace practice
