// Replies that several parts of the live page give.
#include "live/live_reply.h"

#include <nlohmann/json.hpp>

namespace kxhost {

using Json = nlohmann::ordered_json;

HttpReply jsonReply(int status, const Json& json)
{
    constexpr auto kReplace = Json::error_handler_t::replace;
    return {status, "application/json", json.dump(-1, ' ', false, kReplace) + "\n", {}};
}

HttpReply errorReply(int status, const std::string& sentence)
{
    return jsonReply(status, {{"error", sentence}});
}

} // namespace kxhost
