// Where the live page is served: the argument of --live.
#ifndef KXHOST_LIVE_ADDRESS_H
#define KXHOST_LIVE_ADDRESS_H

#include <cstdint>
#include <optional>
#include <string>

namespace kxhost {

struct LiveAddress {
    std::string host;       ///< in numbers, without brackets
    std::uint16_t port = 0; ///< 0 = any that is free
    bool isV6 = false;
    bool isLoopback = true; ///< only this computer reaches it

    bool operator==(const LiveAddress&) const = default;
};

/// Reads "PORT" (on 127.0.0.1), "HOST:PORT" or "[HOST]:PORT" with an IPv6 address. HOST is an
/// address in numbers, or localhost. Nothing = it is none of these.
std::optional<LiveAddress> parseLiveAddress(const std::string& text);

/// "http://127.0.0.1:8080/"
std::string urlOf(const LiveAddress& address);

} // namespace kxhost

#endif
