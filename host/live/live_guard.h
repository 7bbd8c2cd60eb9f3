// Who may see the live page and press its buttons.
#ifndef KXHOST_LIVE_GUARD_H
#define KXHOST_LIVE_GUARD_H

#include "live/live_http.h"

#include <optional>
#include <string>
#include <string_view>

namespace kxhost {

/// What is demanded of those who ask.
struct LiveRights {
    bool isLoopback = true; ///< the page is served to this computer only
    std::string token;      ///< to be shown with each request but that of the page; empty = none
};

/// Whether two texts are equal, in a time that depends on the length of `given` only.
bool isSameSecret(std::string_view given, std::string_view secret);

/// Why a request is refused, as the reply to it. Nothing = it may go on.
///
/// - A page of another origin, which a browser on this computer shows, can reach a loopback
///   address. It gives itself away by its name in the header Host (when the name was bound to this
///   computer's address), or by Origin and Sec-Fetch-Site.
/// - Where more than this computer reaches the page, any name is allowed: the token decides.
/// - No request needs a body.
std::optional<HttpReply> refusalOf(const HttpRequest& request, const LiveRights& rights);

} // namespace kxhost

#endif
