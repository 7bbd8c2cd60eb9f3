// Replies that several parts of the live page give.
#ifndef KXHOST_LIVE_REPLY_H
#define KXHOST_LIVE_REPLY_H

#include "live/live_http.h"

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace kxhost {

/// {"error": sentence}
HttpReply errorReply(int status, const std::string& sentence);
/// Text that is no UTF-8 is replaced where it is not.
HttpReply jsonReply(int status, const nlohmann::ordered_json& json);

} // namespace kxhost

#endif
