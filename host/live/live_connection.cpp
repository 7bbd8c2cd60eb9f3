// One connection to the live page: a request, its reply, and the end.
#include "live/live_connection.h"

#include <array>
#include <cerrno>
#include <utility>

#include <poll.h>
#include <sys/socket.h>

namespace kxhost {
namespace {

using namespace std::chrono_literals;

constexpr auto kTimeToRead = 5s;
constexpr auto kTimeToWrite = 10s;
constexpr auto kTimeToLeave = 1s;

constexpr std::size_t kLongestRequest = 8192;
constexpr std::size_t kMostSkipped = 65536;
constexpr std::string_view kEndOfHead = "\r\n\r\n";

constexpr const char* kTooLong = "HTTP/1.1 431 Request Header Fields Too Large\r\nConnection: "
                                 "close\r\nContent-Length: 0\r\n\r\n";

bool isForLater(ssize_t result)
{
    return result < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
}

} // namespace

LiveConnection::LiveConnection(int socket, HttpEngine& engine, Clock::time_point now)
    : socket_(socket, "cannot take a connection"), engine_(engine), deadline_(now + kTimeToRead)
{}

short LiveConnection::events() const
{
    switch (step_) {
    case Step::kWriting:
        return POLLOUT;
    case Step::kWaiting:
        return POLLRDHUP; // nobody waits any more
    default:
        return POLLIN;
    }
}

void LiveConnection::proceed(Clock::time_point now)
{
    switch (step_) {
    case Step::kReading:
        read(now);
        break;
    case Step::kWriting:
        write(now);
        break;
    case Step::kLeaving:
        skip();
        break;
    default:
        step_ = Step::kOver;
    }
}

void LiveConnection::expire(Clock::time_point now)
{
    if (step_ == Step::kWaiting) {
        askAgain(true, now);
    } else {
        step_ = Step::kOver;
    }
}

void LiveConnection::askAgain(bool isLastTry, Clock::time_point now)
{
    auto answer = engine_.answer(request_, isLastTry);
    if (auto* const reply = std::get_if<std::string>(&answer)) {
        send(std::move(*reply), now);
    } else if (step_ != Step::kWaiting) {
        step_ = Step::kWaiting;
        deadline_ = now + std::get<HttpLater>(answer).atMost;
    }
}

void LiveConnection::read(Clock::time_point now)
{
    std::array<char, 2048> part{};
    const ssize_t count = recv(socket(), part.data(), part.size(), 0);
    if (count <= 0) {
        step_ = isForLater(count) ? step_ : Step::kOver;
        return;
    }
    request_.append(part.data(), static_cast<std::size_t>(count));
    const std::size_t end = request_.find(kEndOfHead);
    if (end != std::string::npos && end <= kLongestRequest) {
        request_.resize(end + kEndOfHead.size());
        askAgain(false, now);
    } else if (request_.size() > kLongestRequest) {
        send(kTooLong, now);
    }
}

void LiveConnection::send(std::string reply, Clock::time_point now)
{
    reply_ = std::move(reply);
    step_ = Step::kWriting;
    deadline_ = now + kTimeToWrite;
    write(now);
}

void LiveConnection::write(Clock::time_point now)
{
    while (sent_ < reply_.size()) {
        const ssize_t count =
            ::send(socket(), reply_.data() + sent_, reply_.size() - sent_, MSG_NOSIGNAL);
        if (count < 0) {
            step_ = isForLater(count) ? step_ : Step::kOver;
            return;
        }
        sent_ += static_cast<std::size_t>(count);
    }
    // A socket that is closed with unread bytes in it takes back what the other end has not read.
    shutdown(socket(), SHUT_WR);
    step_ = Step::kLeaving;
    deadline_ = now + kTimeToLeave;
}

void LiveConnection::skip()
{
    std::array<char, 2048> part{};
    const ssize_t count = recv(socket(), part.data(), part.size(), 0);
    skipped_ += count > 0 ? static_cast<std::size_t>(count) : 0;
    if ((count <= 0 && !isForLater(count)) || skipped_ > kMostSkipped) {
        step_ = Step::kOver;
    }
}

} // namespace kxhost
