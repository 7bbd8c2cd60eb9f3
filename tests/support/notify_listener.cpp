// Stands in for a service manager: the socket that a service sends its notifications to.
#include "notify_listener.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <stdexcept>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace kxtest {

namespace {

using namespace std::chrono_literals;

/// Far beyond what anything takes, also under a sanitizer on a busy machine.
constexpr auto kLimit = 20s;

} // namespace

NotifyListener::NotifyListener(Kind kind)
    : address_((kind == Kind::kPath ? "" : "@") + folder_.file("notify")),
      descriptor_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
{
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    if (address_.size() >= sizeof name.sun_path) {
        throw std::runtime_error("too long for a socket: " + address_);
    }
    std::memcpy(name.sun_path, address_.data(), address_.size());
    if (kind == Kind::kAbstract) {
        name.sun_path[0] = '\0';
    }
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address_.size());
    if (::bind(descriptor_, reinterpret_cast<const sockaddr*>(&name), length) != 0) {
        throw std::runtime_error("cannot listen at " + address_);
    }
}

NotifyListener::~NotifyListener()
{
    ::close(descriptor_);
}

bool NotifyListener::receiveOne(std::chrono::milliseconds limit)
{
    pollfd wait{descriptor_, POLLIN, 0};
    if (::poll(&wait, 1, static_cast<int>(limit.count())) <= 0) {
        return false;
    }
    std::array<char, 4096> datagram{};
    const ssize_t length = ::recv(descriptor_, datagram.data(), datagram.size(), 0);
    if (length >= 0) {
        all_.emplace_back(datagram.data(), static_cast<std::size_t>(length));
    }
    return length >= 0;
}

const std::vector<std::string>& NotifyListener::received()
{
    while (receiveOne(0ms)) {
    }
    return all_;
}

std::string NotifyListener::waitFor(const std::string& start)
{
    const auto until = std::chrono::steady_clock::now() + kLimit;
    while (std::chrono::steady_clock::now() < until) {
        while (next_ < all_.size()) {
            if (all_[next_++].starts_with(start)) {
                return all_[next_ - 1];
            }
        }
        receiveOne(100ms);
    }
    std::string came;
    for (const std::string& each : all_) {
        came += each + "\n";
    }
    throw std::runtime_error("no notification " + start + ", but:\n" + came);
}

long NotifyListener::count(const std::string& start)
{
    return std::ranges::count_if(received(),
                                 [&](const std::string& each) { return each.starts_with(start); });
}

} // namespace kxtest
