#include "practice/server/Api.h"

#include "practice/server/JsonText.h"

#include <nlohmann/json.hpp>

namespace practice {

ApiReply errorReply(int status, std::string_view message)
{
    return {status, jsonText({{"message", message}}), {}};
}

} // namespace practice
