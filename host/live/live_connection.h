// One connection to the live page: a request, its reply, and the end.
#ifndef KXHOST_LIVE_CONNECTION_H
#define KXHOST_LIVE_CONNECTION_H

#include "base/descriptor.h"
#include "live/live_http.h"

#include <chrono>
#include <string>

namespace kxhost {

/// Never waits: it goes on as far as the socket allows, and says what it needs. One thread.
class LiveConnection {
public:
    using Clock = std::chrono::steady_clock;

    /// Takes a socket that does not block.
    LiveConnection(int socket, HttpEngine& engine, Clock::time_point now);

    int socket() const { return socket_.number(); }
    /// What `poll` is to look for; errors are always told.
    short events() const;
    /// When it has to be looked after, whatever has happened by then.
    Clock::time_point deadline() const { return deadline_; }
    bool isOver() const { return step_ == Step::kOver; }
    bool isReading() const { return step_ == Step::kReading; }
    bool isWaiting() const { return step_ == Step::kWaiting; }

    /// The socket can do what `events` said.
    void proceed(Clock::time_point now);
    /// The time is over: a reply that was waited for is given now, anything else is given up.
    void expire(Clock::time_point now);
    /// Something has happened that a reply may have waited for.
    void askAgain(bool isLastTry, Clock::time_point now);

private:
    enum class Step {
        kReading,
        kWaiting, ///< for its reply
        kWriting,
        kLeaving, ///< until the other end has read everything
        kOver,
    };

    void read(Clock::time_point now);
    void send(std::string reply, Clock::time_point now);
    void write(Clock::time_point now);
    void skip();

    Descriptor socket_;
    HttpEngine& engine_;
    Step step_ = Step::kReading;
    Clock::time_point deadline_;
    std::string request_;
    std::string reply_;
    std::size_t sent_ = 0; ///< of the reply
    std::size_t skipped_ = 0;
};

} // namespace kxhost

#endif
