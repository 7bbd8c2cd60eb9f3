// The token of a live page that more than this computer can reach.
#ifndef KXHOST_LIVE_TOKEN_H
#define KXHOST_LIVE_TOKEN_H

#include <string>

namespace kxhost {

struct LiveToken {
    std::string token; ///< empty = none is given
    std::string error; ///< why what is given is no token, one sentence; empty = it is one, or none
};

/// Reads the token from the first line of a file; with an empty path, from the environment variable
/// KXHOST_LIVE_TOKEN. Errors do not tell what was read.
LiveToken readLiveToken(const std::string& path);

} // namespace kxhost

#endif
