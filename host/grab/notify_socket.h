// The socket on which a service manager (systemd) is told how a service is getting on.
#ifndef KXHOST_NOTIFY_SOCKET_H
#define KXHOST_NOTIFY_SOCKET_H

#include <string>

namespace kxhost {

/// Sends datagrams of NAME=value lines, as sd_notify(3) describes them. Never waits: a manager that
/// does not listen must not hold up a grab. One thread.
class NotifySocket {
public:
    /// `address`: path of the socket, or its abstract name behind an '@'; empty = nobody listens.
    explicit NotifySocket(std::string address) : address_(std::move(address)) {}

    bool isThere() const { return !address_.empty(); }
    /// Returns whether it was sent. The first failure is told to the user.
    bool send(const std::string& lines) const;

private:
    std::string address_;
    mutable bool complained_ = false;
};

/// The one that the environment names (NOTIFY_SOCKET).
NotifySocket managerOfEnvironment();

/// "STATUS=" with the text on one line.
std::string statusLine(const std::string& text);

} // namespace kxhost

#endif
