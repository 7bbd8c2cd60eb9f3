// Connections to the live page: replies, slow and silent clients, too many of them, the end.
#include "live/live_server.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <ctime>
#include <deque>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kxhost {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

const LiveAddress kAnyPort{"127.0.0.1", 0, false, true};
constexpr const char* kGet = "GET / HTTP/1.1\r\nHost: a\r\n\r\n";

/// Somebody who connects and sends what he likes.
class Client {
public:
    explicit Client(const LiveServer& server)
        : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "no socket")
    {
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_port = htons(server.address().port);
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const timeval limit{20, 0};
        setsockopt(socket_.number(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        EXPECT_EQ(connect(socket_.number(), reinterpret_cast<sockaddr*>(&to), sizeof to), 0);
    }

    void say(const std::string& text) const
    {
        send(socket_.number(), text.data(), text.size(), MSG_NOSIGNAL);
    }
    /// Everything until the other end closes.
    std::string hear() const
    {
        std::string all;
        char part[4096];
        for (ssize_t count = 0; (count = recv(socket_.number(), part, sizeof part, 0)) > 0;) {
            all.append(part, static_cast<std::size_t>(count));
        }
        return all;
    }
    bool hearsWithin(std::chrono::milliseconds time) const
    {
        pollfd wait{socket_.number(), POLLIN, 0};
        return poll(&wait, 1, static_cast<int>(time.count())) == 1;
    }
    std::string ask(const std::string& text) const
    {
        say(text);
        return hear();
    }

private:
    Descriptor socket_;
};

HttpAnswer hello(const HttpRequest&)
{
    return HttpReply{200, "text/plain", "hello", {}};
}

TEST(LiveServer, APortOfItsOwnChoiceServesOneRequestPerConnection)
{
    LiveServer server(kAnyPort);
    EXPECT_NE(server.address().port, 0);
    server.start(hello);
    for (int i = 0; i < 3; ++i) {
        const std::string reply = Client(server).ask(kGet);
        EXPECT_TRUE(reply.starts_with("HTTP/1.1 200 OK\r\n")) << reply;
        EXPECT_TRUE(reply.ends_with("hello")) << reply;
    }
}

TEST(LiveServer, AnAddressThatIsTakenCannotBeHad)
{
    const LiveServer first(kAnyPort);
    try {
        const LiveServer second(first.address());
        FAIL() << "two servers at one address";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), EADDRINUSE);
        EXPECT_STREQ(error.what(), "cannot take the address: Address already in use");
    }
}

TEST(LiveServer, ItIsFreeAgainRightAfterwards)
{
    LiveAddress address = kAnyPort;
    for (int i = 0; i < 3; ++i) {
        LiveServer server(address);
        address = server.address();
        server.start(hello);
        EXPECT_TRUE(Client(server).ask(kGet).ends_with("hello"));
    }
}

TEST(LiveServer, ARequestMayComeInPieces)
{
    LiveServer server(kAnyPort);
    server.start(hello);
    const Client client(server);
    for (const char* text = kGet; *text != '\0'; ++text) {
        client.say(std::string(1, *text));
    }
    EXPECT_TRUE(client.hear().ends_with("hello"));
}

TEST(LiveServer, ARequestThatNeverEndsIsTooLong)
{
    LiveServer server(kAnyPort);
    server.start(hello);
    const std::string reply = Client(server).ask("GET / HTTP/1.1\r\nX: " + std::string(20000, 'x'));
    EXPECT_TRUE(reply.starts_with("HTTP/1.1 431 ")) << reply;
}

TEST(LiveServer, ABodyBehindARequestDoesNotTakeTheReplyAway)
{
    LiveServer server(kAnyPort);
    server.start(hello);
    const std::string reply = Client(server).ask(kGet + std::string(30000, 'x'));
    EXPECT_TRUE(reply.ends_with("hello")) << reply;
}

TEST(LiveServer, SilentOnesDoNotHoldUpOthers)
{
    LiveServer server(kAnyPort);
    server.start(hello);
    std::deque<Client> silent;
    for (int i = 0; i < 20; ++i) {
        silent.emplace_back(server);
        silent.back().say("GET / HT");
    }
    EXPECT_TRUE(Client(server).ask(kGet).ends_with("hello"));
}

TEST(LiveServer, TooManyWaitForTheirTurn)
{
    LiveServer server(kAnyPort);
    server.start(hello);
    std::deque<Client> silent;
    for (int i = 0; i < 32; ++i) {
        silent.emplace_back(server);
    }
    const Client late(server);
    late.say(kGet);
    EXPECT_FALSE(late.hearsWithin(50ms)) << "the 33rd";
    silent.pop_front(); // its place becomes free
    EXPECT_TRUE(late.hear().ends_with("hello"));
}

/// Time of a processor that this process has taken.
std::chrono::nanoseconds processorTime()
{
    timespec spent{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &spent);
    return std::chrono::seconds(spent.tv_sec) + std::chrono::nanoseconds(spent.tv_nsec);
}

rlim_t firstFreeDescriptor()
{
    return static_cast<rlim_t>(Descriptor(dup(STDERR_FILENO), "no descriptor").number());
}

TEST(LiveServer, WithoutAFreeDescriptorItRestsAndServesLater)
{
    LiveServer server(kAnyPort);
    server.start(hello);
    EXPECT_TRUE(Client(server).ask(kGet).ends_with("hello"));
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit oneMore{firstFreeDescriptor() + 1, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &oneMore);
    const Client late(server); // it is this one's
    late.say(kGet);
    const auto start = processorTime();
    const bool isServed = late.hearsWithin(400ms);
    const auto spent = processorTime() - start;
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_FALSE(isServed);
    EXPECT_LT(spent, 100ms) << "it must not wait busily";
    EXPECT_TRUE(late.hear().ends_with("hello"));
}

TEST(LiveServer, WhoDoesNotReadHoldsUpNobody)
{
    LiveServer server(kAnyPort);
    // More than the system keeps for a connection that is not read from.
    server.start([](const HttpRequest& request) {
        const bool isBig = request.path == "/big";
        return HttpReply{200, "text/plain", isBig ? std::string(8'000'000, 'x') : "hello", {}};
    });
    const Client lazy(server);
    lazy.say("GET /big HTTP/1.1\r\nHost: a\r\n\r\n");
    EXPECT_TRUE(Client(server).ask(kGet).ends_with("hello"));
    EXPECT_GT(lazy.hear().size(), 8'000'000U);
}

TEST(LiveServer, WhoIsToldToWaitIsAskedAgainWhenSomethingHappens)
{
    std::atomic<bool> isReady = false;
    std::atomic<int> calls = 0;
    LiveServer server(kAnyPort);
    server.start([&](const HttpRequest& request) -> HttpAnswer {
        ++calls;
        return isReady ? hello(request) : HttpAnswer(HttpLater{1h});
    });
    const Client client(server);
    client.say(kGet);
    while (calls == 0) {
        std::this_thread::sleep_for(1ms);
    }
    isReady = true;
    server.somethingHappened();
    EXPECT_TRUE(client.hear().ends_with("hello"));
}

TEST(LiveServer, WhoWaitsTooLongGetsALastTry)
{
    LiveServer server(kAnyPort);
    server.start([](const HttpRequest& request) -> HttpAnswer {
        return request.isLastTry ? hello(request) : HttpAnswer(HttpLater{30ms});
    });
    EXPECT_TRUE(Client(server).ask(kGet).ends_with("hello"));
}

TEST(LiveServer, TheEndIsPromptAndThoseWhoWaitAreTold)
{
    std::atomic<int> calls = 0;
    LiveServer server(kAnyPort);
    server.start([&](const HttpRequest& request) -> HttpAnswer {
        ++calls;
        return request.isLastTry ? hello(request) : HttpAnswer(HttpLater{1h});
    });
    const Client silent(server);
    const Client half(server);
    half.say("GET / HT");
    const Client waiting(server);
    waiting.say(kGet);
    while (calls == 0) {
        std::this_thread::sleep_for(1ms);
    }
    const auto start = Clock::now();
    server.stop();
    // 250 ms are what replies get; the rest is for a busy computer.
    EXPECT_LT(Clock::now() - start, 4s) << "the silent ones would have had 5 s";
    EXPECT_TRUE(waiting.hear().ends_with("hello"));
    EXPECT_EQ(silent.hear(), "");
    EXPECT_EQ(half.hear(), "");
    server.stop(); // once more does nothing
}

TEST(LiveServer, ItsThreadTakesNoSignals)
{
    sigset_t blocked;
    std::atomic<bool> isSeen = false;
    LiveServer server(kAnyPort);
    server.start([&](const HttpRequest& request) {
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        isSeen = true;
        return hello(request);
    });
    sigset_t mine;
    pthread_sigmask(SIG_SETMASK, nullptr, &mine);
    EXPECT_EQ(sigismember(&mine, SIGTERM), 0) << "who starts it takes them as before";
    Client(server).ask(kGet);
    server.stop();
    ASSERT_TRUE(isSeen);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGUSR1, SIGUSR2, SIGCHLD, SIGALRM}) {
        EXPECT_EQ(sigismember(&blocked, signal), 1) << signal;
    }
}

TEST(LiveServer, ItServesTheOtherKindOfAddressToo)
{
    try {
        LiveServer server(LiveAddress{"::1", 0, true, true});
        EXPECT_NE(server.address().port, 0);
        server.start(hello);
        const Descriptor client(socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0), "no socket");
        sockaddr_in6 to{};
        to.sin6_family = AF_INET6;
        to.sin6_port = htons(server.address().port);
        to.sin6_addr = in6addr_loopback;
        EXPECT_EQ(connect(client.number(), reinterpret_cast<sockaddr*>(&to), sizeof to), 0);
    } catch (const std::system_error& error) {
        GTEST_SKIP() << "no IPv6 on this computer: " << error.what();
    }
}

} // namespace
} // namespace kxhost
