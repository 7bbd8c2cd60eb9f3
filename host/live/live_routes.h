// What there is to ask the live page for.
#ifndef KXHOST_LIVE_ROUTES_H
#define KXHOST_LIVE_ROUTES_H

#include "live/live_guard.h"
#include "live/live_http.h"
#include "live/live_picture.h"
#include "live/live_status.h"
#include "live/live_steering.h"

#include <functional>

namespace kxhost {

/// For the thread that serves the page.
class LiveRoutes {
public:
    struct Sources {
        LivePicture& picture;
        LiveSteering& steering;
        std::function<nlohmann::ordered_json()> status; ///< see `statusJson`
        std::function<std::optional<LiveEnd>()> end;    ///< nothing = the grab goes on
    };

    LiveRoutes(LiveRights rights, Sources sources)
        : rights_(std::move(rights)), sources_(std::move(sources))
    {}

    /// The answer to any request, with the headers that protect it.
    HttpAnswer handle(const HttpRequest& request);

private:
    HttpAnswer route(const HttpRequest& request);
    HttpAnswer get(const HttpRequest& request);
    HttpAnswer end(const HttpRequest& request);

    const LiveRights rights_;
    const Sources sources_;
};

} // namespace kxhost

#endif
