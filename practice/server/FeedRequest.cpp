#include "practice/server/FeedRequest.h"

#include <nlohmann/json.hpp>

namespace practice {

bool isFeedPing(const std::string& text)
{
    const auto message = nlohmann::json::parse(text, nullptr, false);
    return message.is_object() && message.value("type", nlohmann::json()) == "ping";
}

} // namespace practice
