// Stands in for a service manager: the socket that a service sends its notifications to.
#ifndef KX_TEST_NOTIFY_LISTENER_H
#define KX_TEST_NOTIFY_LISTENER_H

#include "temporary_folder.h"

#include <chrono>
#include <string>
#include <vector>

namespace kxtest {

class NotifyListener {
public:
    enum class Kind { kPath, kAbstract };
    explicit NotifyListener(Kind kind = Kind::kPath);
    ~NotifyListener();
    NotifyListener(const NotifyListener&) = delete;
    NotifyListener& operator=(const NotifyListener&) = delete;

    /// What the environment variable NOTIFY_SOCKET holds for the service.
    const std::string& address() const { return address_; }
    /// All that was received so far, a datagram each.
    const std::vector<std::string>& received();
    /// Waits for a datagram behind those that earlier calls returned that begins with `start`.
    /// Returns it; throws, with all that came, when there is none in time.
    std::string waitFor(const std::string& start);
    /// How many of those that came begin with `start`.
    long count(const std::string& start);

private:
    bool receiveOne(std::chrono::milliseconds limit);

    TemporaryFolder folder_;
    std::string address_;
    int descriptor_;
    std::vector<std::string> all_;
    std::size_t next_ = 0; ///< the first one that no wait has looked at
};

} // namespace kxtest

#endif
