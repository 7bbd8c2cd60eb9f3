// Serves the live page: takes connections, reads requests, sends replies.
#ifndef KXHOST_LIVE_SERVER_H
#define KXHOST_LIVE_SERVER_H

#include "base/descriptor.h"
#include "live/live_address.h"
#include "live/live_http.h"

#include <atomic>
#include <thread>

namespace kxhost {

/// One thread of low priority serves all connections, each of them with one request, and waits for
/// none: a slow client costs nothing but one of the places, and these for a limited time only.
class LiveServer {
public:
    /// Takes the address. Throws std::system_error when it cannot be had.
    explicit LiveServer(const LiveAddress& address);
    /// Stops first, if nobody has.
    ~LiveServer();
    LiveServer(const LiveServer&) = delete;
    LiveServer& operator=(const LiveServer&) = delete;

    /// With the port that was chosen.
    const LiveAddress& address() const { return address_; }

    /// Starts the thread, on which `handler` is called. It takes no signals. REQUIRES: called once.
    void start(HttpHandler handler);

    /// Asks those again who were told to wait. Any thread; does not wait.
    void somethingHappened() const;

    /// Replies to those who wait, as a last try, and ends the thread within a moment. May be called
    /// again.
    void stop();

private:
    void run(const HttpHandler& handler);

    LiveAddress address_;
    Descriptor listener_;
    Descriptor event_;
    std::atomic<bool> isStopping_ = false;
    std::thread thread_;
};

} // namespace kxhost

#endif
