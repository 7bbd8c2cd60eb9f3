// The socket on which a service manager (systemd) is told how a service is getting on.
#include "grab/notify_socket.h"

#include "base/notice.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace kxhost {
namespace {

/// 0, or the error number of what failed.
int sendTo(const std::string& address, const std::string& lines)
{
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    if (address.size() >= sizeof name.sun_path || (address[0] != '/' && address[0] != '@')) {
        return EAFNOSUPPORT;
    }
    std::memcpy(name.sun_path, address.data(), address.size());
    if (address[0] == '@') {
        name.sun_path[0] = '\0'; // what marks an abstract name for the kernel
    }
    const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0) {
        return errno;
    }
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address.size());
    const ssize_t sent = sendto(descriptor, lines.data(), lines.size(), MSG_NOSIGNAL,
                                reinterpret_cast<const sockaddr*>(&name), length);
    const int error = sent < 0 ? errno : 0;
    close(descriptor);
    return error;
}

} // namespace

bool NotifySocket::send(const std::string& lines) const
{
    if (!isThere()) {
        return false;
    }
    const int error = sendTo(address_, lines);
    if (error != 0 && !complained_) {
        complained_ = true;
        complain("Cannot tell the service manager at " + address_ + ": " +
                 std::generic_category().message(error) + ".");
    }
    return error == 0;
}

NotifySocket managerOfEnvironment()
{
    const char* const address = std::getenv("NOTIFY_SOCKET");
    return NotifySocket(address != nullptr ? address : "");
}

std::string statusLine(const std::string& text)
{
    std::string line = "STATUS=" + text;
    std::ranges::replace(line, '\n', ' ');
    return line;
}

} // namespace kxhost
