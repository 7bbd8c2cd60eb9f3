// Hosts that answer nonsense, and hosts that throw: each service in turn, in whole runs. What is
// specified is answered so; of the rest the run ends in order.
//
// Which services there are comes from the recorded calls of the reference sessions. Undefined
// behaviour shows where the sanitizers are built in.
#include "campaign_run.h"
#include "nonsense_answers.h"
#include "plugin_test.h"
#include "residue.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string_view>
#include <thread>

using kxtest::Event;
using kxtest::host;
using kxtest::Kind;

namespace kxcampaign {

namespace {

constexpr const char* kThrown = "thrown by the host";

bool isService(const Event& event)
{
    return event.kind == Kind::getter || event.kind == Kind::host || event.kind == Kind::utility;
}

/// The reference session, ended by a signal at the latest after so many frames.
Session limited(Session session)
{
    constexpr unsigned kLast = 40;
    constexpr int kFinish = 1;
    session.signals[kLast] = kFinish;
    return session;
}

/// What was tried, for the report.
std::set<std::string> triedServices;
unsigned triedAnswers = 0;
unsigned triedThrows = 0;

class NonsenseHostTest : public kxtest::PluginTest,
                         public testing::WithParamInterface<std::size_t> {
protected:
    NonsenseHostTest() { gKxLogLevelLib = 4; }
    void TearDown() override { clearNonsense(); }

    /// A run as it should be.
    static Outcome reference(const Session& session)
    {
        putOnBus(session);
        return runSession(session);
    }
    static std::set<std::string> servicesOf(const Outcome& outcome)
    {
        std::set<std::string> services;
        for (const Event& event : outcome.events) {
            if (isService(event)) {
                services.insert(event.name);
            }
        }
        return services;
    }
    /// The services that no earlier session calls.
    static std::set<std::string> servicesOf(std::size_t number)
    {
        std::set<std::string> services = servicesOf(reference(sessions()[number]));
        for (std::size_t earlier = 0; earlier < number; ++earlier) {
            for (const std::string& service : servicesOf(reference(sessions()[earlier]))) {
                services.erase(service);
            }
        }
        return services;
    }
    static void expectInOrder(const Session& session, const Outcome& outcome,
                              const kxtest::ProcessResources& before, const Outcome& good)
    {
        EXPECT_EQ(residueOf(outcome, before), "");
        const Outcome next = runSession(session);
        EXPECT_EQ(next.code, good.code) << "next run";
        EXPECT_EQ(next.exports, good.exports) << "next run";
    }
};

TEST_P(NonsenseHostTest, EachServiceAnswersNonsense)
{
    const Session session = limited(sessions()[GetParam()]);
    const Outcome good = reference(session);
    for (const std::string& service : servicesOf(GetParam())) {
        const auto answers = nonsenseOf(service);
        ASSERT_TRUE(answers)
            << service << " is not in tests/campaign/nonsense_answers.cpp: add what it answers";
        for (const Nonsense& answer : *answers) {
            const std::string name = session.name + ": " + service + " answers " + answer.label;
            SCOPED_TRACE(name);
            watch(name);
            putOnBus(session);
            const kxtest::ProcessResources before = kxtest::processResources();
            const Outcome outcome = runSession(session, answer.apply);
            clearNonsense();
            triedServices.insert(service);
            ++triedAnswers;
            EXPECT_EQ(outcome.code, answer.code) << outcome.text();
            if (!answer.message.empty()) {
                EXPECT_TRUE(logShows(outcome, answer.message)) << "not said: " << answer.message;
            }
            expectInOrder(session, outcome, before, good);
        }
    }
}

/// A call of a service in a run.
struct ServiceCall {
    unsigned number = 0; ///< of the calls of this service, counted from 1
    bool inLoop = false;
};

/// The first and the last call of each service that can throw here.
std::map<std::string, std::vector<ServiceCall>> callsToThrow(const Outcome& good)
{
    std::map<std::string, std::vector<ServiceCall>> calls;
    std::map<std::string, unsigned> numbers;
    bool inLoop = false;
    for (const Event& event : good.events) {
        if (event.name == "KxGi__SetTermSigProc") {
            inLoop = false;
        }
        if (event.kind == Kind::host || event.kind == Kind::utility) {
            std::vector<ServiceCall>& found = calls[event.name];
            found.resize(std::min<std::size_t>(found.size(), 1));
            found.push_back({++numbers[event.name], inLoop});
        }
        if (event.name == "KxGi__ResetTermSigProc") {
            inLoop = true;
        }
    }
    // The host sets the format without being asked whether it throws.
    calls.erase("KxGiMainCtx__SetFormat");
    return calls;
}

void throwAt(const std::string& service, unsigned number)
{
    auto left = std::make_shared<unsigned>(number);
    host().onCall = [service, left](std::string_view name) {
        if (name == service && --*left == 0) {
            throw std::runtime_error(kThrown);
        }
    };
}

TEST_P(NonsenseHostTest, EachServiceThrows)
{
    Session session = sessions()[GetParam()];
    // A second thread that asks for times would make their number uncertain.
    session.controlThread = false;
    const Outcome good = reference(session);
    for (const auto& [service, calls] : callsToThrow(good)) {
        for (const ServiceCall& call : calls) {
            const std::string name = kxtest::format(
                "%s: %s throws at call %u", session.name.c_str(), service.c_str(), call.number);
            SCOPED_TRACE(name);
            watch(name);
            putOnBus(session);
            const kxtest::ProcessResources before = kxtest::processResources();
            const Outcome outcome =
                runSession(session, [&thrower = service, &call] { throwAt(thrower, call.number); });
            ++triedThrows;
            if (call.inLoop) {
                EXPECT_EQ(outcome.code, -10) << outcome.text();
                EXPECT_TRUE(logShows(
                    outcome, std::string("wAn unhandled exception occured (-10): ") + kThrown));
            } else {
                EXPECT_EQ(outcome.thrown, kThrown) << outcome.text();
            }
            // One that throws instead of keeping the signals has not kept them.
            if (service != "KxGi__ResetTermSigProc") {
                expectInOrder(session, outcome, before, good);
            }
        }
    }
}

using NonsenseControlThreadTest = NonsenseHostTest;

TEST_P(NonsenseControlThreadTest, AnExceptionOfTheHostEndsItsLoop)
{
    const Session& session = sessions()[GetParam()];
    watch(session.name + ": the host throws on the control thread");
    const Outcome good = reference(session);
    const kxtest::ProcessResources before = kxtest::processResources();
    const Outcome outcome = runSession(session, [] {
        host().onCall = [own = host().onCall,
                         grabThread = std::this_thread::get_id()](std::string_view name) {
            own(name);
            if (std::this_thread::get_id() != grabThread) {
                throw std::runtime_error(kThrown);
            }
        };
    });
    EXPECT_EQ(outcome.code, good.code) << outcome.text();
    EXPECT_EQ(outcome.exports, good.exports);
    EXPECT_TRUE(logShows(outcome, "ictrl thread loop is done"));
    EXPECT_FALSE(logShows(outcome, "isent data")) << "nothing was thrown";
    expectInOrder(session, outcome, before, good);
}

std::vector<std::size_t> sessionsWithControlThread()
{
    std::vector<std::size_t> numbers;
    for (std::size_t number = 0; number < sessions().size(); ++number) {
        if (sessions()[number].controlThread) {
            numbers.push_back(number);
        }
    }
    return numbers;
}

INSTANTIATE_TEST_SUITE_P(Sessions, NonsenseControlThreadTest,
                         testing::ValuesIn(sessionsWithControlThread()),
                         [](const auto& one) { return sessions()[one.param].name; });

INSTANTIATE_TEST_SUITE_P(Sessions, NonsenseHostTest,
                         testing::Range<std::size_t>(0, sessions().size()),
                         [](const auto& one) { return sessions()[one.param].name; });

/// Prints what was tried.
class NonsenseReport : public testing::Environment {
public:
    void TearDown() override
    {
        std::printf("\nnonsense: %u answers of %zu services; %u exceptions of the host\n",
                    triedAnswers, triedServices.size(), triedThrows);
    }
};

[[maybe_unused]] testing::Environment* const nonsenseReport =
    testing::AddGlobalTestEnvironment(new NonsenseReport);

} // namespace

} // namespace kxcampaign
