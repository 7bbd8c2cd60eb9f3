// Where the live page is served: the argument of --live.
#include "live/live_address.h"

#include <charconv>
#include <string_view>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>

namespace kxhost {
namespace {

constexpr std::string_view kThisComputer = "127.0.0.1";

bool readPort(std::string_view text, std::uint16_t& port)
{
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, port);
    return error == std::errc{} && stop == end;
}

/// "[::1]" without its brackets; nothing = there are none.
std::optional<std::string> inBrackets(const std::string& host)
{
    if (host.size() < 2 || host.front() != '[' || host.back() != ']') {
        return {};
    }
    return host.substr(1, host.size() - 2);
}

bool readV4(LiveAddress& address)
{
    constexpr unsigned kNetworkShift = 24;
    constexpr std::uint32_t kLoopbackNetwork = 127;
    in_addr number{};
    if (inet_pton(AF_INET, address.host.c_str(), &number) != 1) {
        return false;
    }
    address.isLoopback = ntohl(number.s_addr) >> kNetworkShift == kLoopbackNetwork;
    return true;
}

bool readV6(LiveAddress& address)
{
    in6_addr number{};
    if (inet_pton(AF_INET6, address.host.c_str(), &number) != 1) {
        return false;
    }
    address.isV6 = true;
    address.isLoopback = IN6_IS_ADDR_LOOPBACK(&number);
    return true;
}

} // namespace

std::optional<LiveAddress> parseLiveAddress(const std::string& text)
{
    const std::size_t colon = text.rfind(':');
    const bool isPort = colon == std::string::npos;
    const std::string host = isPort ? std::string(kThisComputer) : text.substr(0, colon);
    LiveAddress address;
    if (!readPort(isPort ? text : text.substr(colon + 1), address.port)) {
        return {};
    }
    if (const std::optional<std::string> inner = inBrackets(host)) {
        address.host = *inner;
        return readV6(address) ? std::optional(address) : std::nullopt;
    }
    address.host = host == "localhost" ? kThisComputer : host;
    return readV4(address) ? std::optional(address) : std::nullopt;
}

std::string urlOf(const LiveAddress& address)
{
    const std::string host = address.isV6 ? "[" + address.host + "]" : address.host;
    return "http://" + host + ":" + std::to_string(address.port) + "/";
}

} // namespace kxhost
