// The live page itself.
#ifndef KXHOST_LIVE_PAGE_H
#define KXHOST_LIVE_PAGE_H

#include "live/live_http.h"

namespace kxhost {

/// The page, which is the same for every grab, with a policy that lets its own script and style
/// run and nothing else. Throws std::system_error without random numbers.
HttpReply livePage();

} // namespace kxhost

#endif
