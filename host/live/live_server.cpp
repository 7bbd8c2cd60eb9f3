// Serves the live page: takes connections, reads requests, sends replies.
#include "live/live_server.h"

#include "live/live_connection.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <list>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kxhost {
namespace {

using namespace std::chrono_literals;
using Clock = LiveConnection::Clock;

constexpr std::size_t kMostConnections = 32;
/// What replies have to get out when the server stops.
constexpr auto kTimeToStop = 250ms;
/// For how long no connection is taken after one that could not be.
constexpr auto kTimeToRest = 100ms;
/// How much nicer than the grab.
constexpr int kNiceness = 5;

/// An address as the system takes it.
struct SocketAddress {
    sockaddr_storage storage{};
    socklen_t size = 0;

    sockaddr* plain() { return reinterpret_cast<sockaddr*>(&storage); }
};

SocketAddress socketAddressOf(const LiveAddress& address)
{
    SocketAddress made;
    if (address.isV6) {
        auto& v6 = reinterpret_cast<sockaddr_in6&>(made.storage);
        v6.sin6_family = AF_INET6;
        v6.sin6_port = htons(address.port);
        inet_pton(AF_INET6, address.host.c_str(), &v6.sin6_addr);
        made.size = sizeof v6;
    } else {
        auto& v4 = reinterpret_cast<sockaddr_in&>(made.storage);
        v4.sin_family = AF_INET;
        v4.sin_port = htons(address.port);
        inet_pton(AF_INET, address.host.c_str(), &v4.sin_addr);
        made.size = sizeof v4;
    }
    return made;
}

void demand(int result, const char* what)
{
    if (result != 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

std::uint16_t portOf(int socket)
{
    SocketAddress bound;
    bound.size = sizeof bound.storage;
    demand(getsockname(socket, bound.plain(), &bound.size), "cannot learn the port");
    return ntohs(bound.storage.ss_family == AF_INET6
                     ? reinterpret_cast<sockaddr_in6&>(bound.storage).sin6_port
                     : reinterpret_cast<sockaddr_in&>(bound.storage).sin_port);
}

/// Binds and listens; sets the port that was chosen.
void listenAt(int socket, LiveAddress& address)
{
    const int yes = 1;
    // A port is free again as soon as its grab has ended.
    demand(setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes), "cannot set the socket");
    SocketAddress wanted = socketAddressOf(address);
    demand(bind(socket, wanted.plain(), wanted.size), "cannot take the address");
    demand(listen(socket, static_cast<int>(kMostConnections)), "cannot listen");
    address.port = portOf(socket);
}

/// All connections, and who looks after them when.
class Connections {
public:
    Connections(int listener, int event, const HttpHandler& handler)
        : listener_(listener), event_(event), engine_(handler)
    {}

    /// Waits until something happens, and does what there is to do.
    void step(Clock::time_point latest)
    {
        const bool isResting = Clock::now() < restUntil_;
        std::vector<pollfd> polled = {pollfd{event_, POLLIN, 0},
                                      pollfd{hasRoom() && !isResting ? listener_ : -1, POLLIN, 0}};
        latest = isResting ? std::min(latest, restUntil_) : latest;
        for (const LiveConnection& each : connections_) {
            polled.push_back({each.socket(), each.events(), 0});
            latest = std::min(latest, each.deadline());
        }
        const int ready = poll(polled.data(), polled.size(), millisecondsUntil(latest));
        const Clock::time_point now = Clock::now();
        if (ready > 0) {
            proceed(polled, now);
        }
        for (LiveConnection& each : connections_) {
            if (!each.isOver() && now >= each.deadline()) {
                each.expire(now);
            }
        }
        connections_.remove_if([](const LiveConnection& each) { return each.isOver(); });
        if (ready > 0 && polled[1].revents != 0) {
            accept(now);
        }
    }

    /// Asks those again who wait.
    void askAgain(bool isLastTry)
    {
        const Clock::time_point now = Clock::now();
        for (LiveConnection& each : connections_) {
            if (each.isWaiting()) {
                each.askAgain(isLastTry, now);
            }
        }
    }

    /// Lets those go who have not asked for anything yet.
    void takeNoMore()
    {
        listener_ = -1;
        connections_.remove_if([](const LiveConnection& each) { return each.isReading(); });
    }
    bool isEmpty() const { return connections_.empty(); }

private:
    bool hasRoom() const { return connections_.size() < kMostConnections; }

    static int millisecondsUntil(Clock::time_point time)
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - Clock::now());
        return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, 60000));
    }

    void proceed(const std::vector<pollfd>& polled, Clock::time_point now)
    {
        if (polled[0].revents != 0) {
            eventfd_t count = 0;
            eventfd_read(event_, &count);
            askAgain(false);
        }
        std::size_t place = 2;
        for (LiveConnection& each : connections_) {
            if (polled[place++].revents != 0) {
                each.proceed(now);
            }
        }
    }

    void accept(Clock::time_point now)
    {
        const int socket = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (socket >= 0) {
            connections_.emplace_back(socket, engine_, now);
        } else if (errno != EAGAIN && errno != ECONNABORTED && errno != EINTR) {
            // No descriptor is free: it stays there to be taken, which must not become a busy wait.
            restUntil_ = now + kTimeToRest;
        }
    }

    int listener_; ///< negative = takes no more
    int event_;
    HttpEngine engine_;
    std::list<LiveConnection> connections_;
    Clock::time_point restUntil_; ///< no connections are taken before
};

/// Signals are for the thread that waits for them.
class NoSignals {
public:
    NoSignals()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~NoSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    NoSignals(const NoSignals&) = delete;
    NoSignals& operator=(const NoSignals&) = delete;

private:
    sigset_t before_{};
};

} // namespace

LiveServer::LiveServer(const LiveAddress& address)
    : address_(address), listener_(socket(address.isV6 ? AF_INET6 : AF_INET,
                                          SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0),
                                   "cannot make a socket"),
      event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "cannot wait for requests")
{
    listenAt(listener_.number(), address_);
}

LiveServer::~LiveServer()
{
    stop();
}

void LiveServer::start(HttpHandler handler)
{
    const NoSignals whileItStarts;
    thread_ = std::thread([this, handler = std::move(handler)] { run(handler); });
}

void LiveServer::somethingHappened() const
{
    eventfd_write(event_.number(), 1);
}

void LiveServer::stop()
{
    isStopping_ = true;
    somethingHappened();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void LiveServer::run(const HttpHandler& handler)
{
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), kNiceness);
    Connections connections(listener_.number(), event_.number(), handler);
    while (!isStopping_) {
        connections.step(Clock::time_point::max());
    }
    connections.takeNoMore();
    connections.askAgain(true);
    const Clock::time_point end = Clock::now() + kTimeToStop;
    while (!connections.isEmpty() && Clock::now() < end) {
        connections.step(end);
    }
}

} // namespace kxhost
