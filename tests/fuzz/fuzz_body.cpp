// The body of a request.

#include "fuzz/Fuzz.h"

#include "practice/server/Api.h"
#include "practice/server/BodyReader.h"
#include "practice/server/JsonText.h"
#include "practice/server/Limits.h"

#include <algorithm>
#include <cmath>

using fuzz::demand;

namespace fuzz_body {

namespace {

/// What a reader gives, or nothing where it refuses; a refusal has to be a proper answer that begins with the
/// field's name in quotes, if it is one's.
template <typename Read> auto taken(const std::string& field, Read read) -> std::optional<decltype(read())>
{
    try {
        return read();
    } catch (const practice::ApiError& error) {
        demand(error.status == 400 && !error.message.empty(), "a refusal says why");
        demand(field.empty() || error.message.starts_with('"' + field + "\" "), "a refusal names the field");
        const practice::ApiReply reply = practice::errorReply(error.status, error.message);
        const auto json = nlohmann::json::parse(reply.body, nullptr, false);
        demand(json.is_object() && json.size() == 1 && json.contains("message"), "a refusal is an answer");
        return std::nullopt;
    }
}

void readField(const practice::BodyReader& body, const char* name)
{
    const nlohmann::json* value = body.find(name);
    const auto text = taken(name, [&] { return body.text(name); });
    demand(!text || (value && value->is_string() && !text->empty()), "a text is one");
    const auto number = taken(name, [&] { return body.number(name); });
    demand(!number || (value && practice::numberOf(*value) == number), "both readers of a number agree");
    demand(!number || (std::isfinite(*number) && std::abs(*number) <= 1e15),
        "a number is one of a price's size");
    const auto wish = taken(name, [&] { return body.optionalNumber(name); });
    demand(!wish || wish->has_value() == (value != nullptr), "what is absent is no number");
    static_cast<void>(taken(name, [&] { return body.optionalText(name); }));
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    const std::string text(fuzz::textOf(data, size));
    const auto body = taken({}, [&] { return practice::BodyReader(text); });
    if (!body)
        return 0;
    // The platform writes nothing out again whose depth it has not read.
    const bool isFlat
        = std::count_if(text.begin(), text.end(), [](char c) { return c == '[' || c == '{'; }) < 1000;
    for (const char* name : {"accountId", "symbol", "orderKind", "type", "lotSize", "pendingPrice",
             "stopLoss", "takeProfit", "comment", "points", "style"}) {
        readField(*body, name);
        if (const nlohmann::json* value = body->find(name)) {
            if (!isFlat)
                continue;
            const std::string written = practice::jsonText(*value);
            demand(nlohmann::json::parse(written, nullptr, false) == *value,
                "a value is written as it was read");
        }
    }
    return 0;
}

// A little longer than any that a reader is handed.
const fuzz::Target target("body", &attempt, practice::longestBody + 4096);

} // namespace

} // namespace fuzz_body
