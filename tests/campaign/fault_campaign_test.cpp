// The fault campaign: each call that the plug-in makes to the SDK fails in turn, in each phase and
// in each way, and the run is held against the table of answers.
//
// What is tried comes from the recorded calls of the reference sessions. Printed at the end; the
// whole of it with one run of the program.
#include "campaign_run.h"
#include "fault_rules.h"
#include "plugin_test.h"
#include "residue.h"
#include "tried.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <utility>

using kxtest::Event;
using kxtest::Kind;

namespace kxcampaign {

namespace {

/// One call of a reference run that is to fail.
struct Attempt {
    std::size_t index = 0;   ///< of the call in the run
    unsigned occurrence = 0; ///< of the call in its phase, counted from 1
    Failure failure = Failure::error;
    bool always = false; ///< from this call on
};

/// The calls of one kind in one phase.
using Group = std::vector<std::size_t>;
using GroupKey = std::pair<Phase, std::string>;

std::map<GroupKey, Group> groupsOf(const std::vector<TracedCall>& calls)
{
    std::map<GroupKey, Group> groups;
    for (std::size_t index = 0; index < calls.size(); ++index) {
        groups[{calls[index].phase, calls[index].key()}].push_back(index);
    }
    return groups;
}

std::vector<Failure> failuresOf(const TracedCall& call)
{
    std::vector<Failure> failures = {Failure::error, Failure::exception};
    if (call.operation.ends_with("Register")) {
        failures.push_back(Failure::timeout);
    }
    // On a thread of its own such an exception is the end of the process.
    if (call.phase != Phase::ioBox) {
        failures.push_back(Failure::foreign);
    }
    // A camera that is not connected yet has nothing to be unplugged from.
    if (call.object.ends_with("Camera") && call.operation != "Connect") {
        failures.push_back(Failure::unplug);
        failures.push_back(Failure::unplugAndThrow);
    }
    return failures;
}

bool unplugs(Failure failure)
{
    return failure == Failure::unplug || failure == Failure::unplugAndThrow;
}

bool throws(Failure failure)
{
    return failure == Failure::exception || failure == Failure::foreign ||
           failure == Failure::unplugAndThrow;
}

/// The first call of the group, one in the middle, the last, and all from the first on.
std::vector<Attempt> attemptsOn(const Group& group, const TracedCall& call)
{
    const std::set<std::size_t> places = {0, group.size() / 2, group.size() - 1};
    std::vector<Attempt> attempts;
    for (const Failure failure : failuresOf(call)) {
        for (const std::size_t place : places) {
            attempts.push_back({group[place], static_cast<unsigned>(place) + 1, failure, false});
        }
        // What was unplugged once stays so.
        if (!unplugs(failure)) {
            attempts.push_back({group[0], 1, failure, true});
        }
    }
    return attempts;
}

/// What is to come of an attempt.
struct Expected {
    std::optional<int> code; ///< nothing: an exception comes out
    std::string thrown;
    std::string message;
    bool silent = false; ///< no line of the log tells the fault
    bool sameFrames = false;
};

/// The answers to the failed call and to those that fail after it.
class Prediction {
public:
    Prediction(const std::vector<TracedCall>& calls, const Outcome& reference)
        : calls_(calls), reference_(reference)
    {}

    Expected of(const Attempt& attempt) const
    {
        return throws(attempt.failure) ? thrown(attempt) : failed(attempt);
    }
    /// The first call that the table does not know; null = none.
    const TracedCall* unknown(const Attempt& attempt) const
    {
        const TracedCall& call = calls_[attempt.index];
        return answerTo(call, attempt.occurrence, attempt.failure, attempt.always) ? nullptr
                                                                                   : &call;
    }

private:
    Expected thrown(const Attempt& attempt) const
    {
        const TracedCall& call = calls_[attempt.index];
        Expected expected;
        if (attempt.failure == Failure::foreign) {
            expected.thrown = "?";
        } else if (call.phase == Phase::ioBox) {
            expected.code = unplugs(attempt.failure) ? codeOf(answersTo(attempt)) : reference_.code;
            expected.message = "ictrl thread loop is done";
            expected.sameFrames = !unplugs(attempt.failure);
        } else if (call.inLoop) {
            expected.code = -10;
            // A library that throws even then cannot be asked.
            const bool gone =
                unplugs(attempt.failure) || (call.operation == "IsConnected" && attempt.always);
            expected.message = gone ? "wThe device detach triggered an exception (-10): "
                                    : "wAn unhandled exception occured (-10): ";
            expected.message += kFaultText;
        } else {
            expected.thrown = kFaultText;
        }
        return expected;
    }
    Expected failed(const Attempt& attempt) const
    {
        const std::vector<Answer> answers = answersTo(attempt);
        Expected expected;
        expected.code = codeOf(answers);
        if (unplugs(attempt.failure)) {
            return expected;
        }
        static std::set<std::string> seen;
        const Answer& first = answers.front();
        const bool repeated = first.oncePerProcess && !seen.insert(first.message).second;
        expected.message = repeated ? "" : first.message;
        expected.silent = std::all_of(answers.begin(), answers.end(), [&](const Answer& answer) {
            return answer.message.empty() || repeated;
        });
        expected.sameFrames = expected.code == reference_.code &&
                              std::all_of(answers.begin(), answers.end(),
                                          [](const Answer& answer) { return answer.sameFrames; });
        return expected;
    }

    /// To the failed call, and to those that fail after it. A camera that is gone refuses all.
    std::vector<Answer> answersTo(const Attempt& attempt) const
    {
        const TracedCall& hit = calls_[attempt.index];
        const bool gone = unplugs(attempt.failure);
        const bool toTheEnd = attempt.always || gone;
        std::map<GroupKey, unsigned> occurrences;
        std::vector<Answer> answers;
        for (std::size_t index = 0; index < calls_.size(); ++index) {
            const TracedCall& call = calls_[index];
            const unsigned occurrence = ++occurrences[{call.phase, call.key()}];
            const bool same = call.operation == hit.operation && call.detail == hit.detail;
            const bool later = index > attempt.index && toTheEnd && (gone || same);
            if (index != attempt.index && !later) {
                continue;
            }
            if (auto answer = answerTo(call, occurrence, attempt.failure, toTheEnd)) {
                if (gone && later && answer->code == 0) {
                    // What would have ended the run in order is not reached.
                    answer->code.reset();
                }
                answers.push_back(std::move(*answer));
            }
        }
        return answers;
    }
    /// Of the first failed call that ends the run.
    std::optional<int> codeOf(const std::vector<Answer>& answers) const
    {
        const auto last = std::find_if(answers.begin(), answers.end(),
                                       [](const Answer& answer) { return answer.code; });
        return last == answers.end() ? reference_.code : last->code;
    }

    const std::vector<TracedCall>& calls_;
    const Outcome& reference_;
};

fcsim::Fault faultOf(const TracedCall& call, const Attempt& attempt)
{
    fcsim::Fault fault;
    fault.operation = call.operation;
    fault.detail = call.detail;
    fault.skip = call.before;
    fault.count = attempt.always ? 0 : 1;
    fault.description = kFaultText;
    fault.error = attempt.failure == Failure::timeout ? FlyCapture2::PGRERROR_TIMEOUT
                                                      : FlyCapture2::PGRERROR_FAILED;
    if (attempt.failure == Failure::exception || attempt.failure == Failure::unplugAndThrow) {
        fault.throws = kFaultText;
    }
    fault.throwsOther = attempt.failure == Failure::foreign;
    fault.detach = unplugs(attempt.failure);
    return fault;
}

/// Whether the run came to the call that the fault waited for.
bool wasHit(const Outcome& outcome, const fcsim::Fault& fault)
{
    const std::string name = "." + fault.operation;
    const auto calls = std::ranges::count_if(outcome.events, [&](const Event& event) {
        return event.kind == Kind::sdk && event.name.ends_with(name) &&
               event.arguments.starts_with(fault.detail);
    });
    return static_cast<std::uint64_t>(calls) > fault.skip;
}

bool logTells(const Outcome& outcome, const char* text)
{
    return std::any_of(outcome.events.begin(), outcome.events.end(), [text](const Event& event) {
        return event.kind == Kind::log && event.arguments.find(text) != std::string::npos;
    });
}

Tried& tried()
{
    static Tried all;
    return all;
}

class FaultCampaignTest : public kxtest::PluginTest,
                          public testing::WithParamInterface<std::size_t> {
protected:
    FaultCampaignTest() { gKxLogLevelLib = 4; }

    static Outcome reference(const Session& session)
    {
        putOnBus(session);
        return runSession(session);
    }
    /// Calls that earlier sessions reach in the same phase are tried there.
    static std::set<GroupKey> triedBefore(std::size_t number)
    {
        std::set<GroupKey> keys;
        for (std::size_t session = 0; session < number; ++session) {
            for (const TracedCall& call : trace(reference(sessions()[session]))) {
                keys.insert({call.phase, call.key()});
            }
        }
        return keys;
    }

    void tryAll(const Session& session, std::size_t number)
    {
        const std::set<GroupKey> before = triedBefore(number);
        reference_ = reference(session);
        calls_ = trace(reference_);
        ASSERT_EQ(reference_.code, 0) << reference_.text();
        for (const auto& [key, group] : groupsOf(calls_)) {
            if (before.contains(key)) {
                continue;
            }
            for (const Attempt& attempt : attemptsOn(group, calls_[group[0]])) {
                tryOne(session, attempt);
            }
        }
    }

private:
    void tryOne(const Session& session, const Attempt& attempt)
    {
        const TracedCall& call = calls_[attempt.index];
        const std::string name =
            kxtest::format("%s: %s in %s, call %u%s, %s", session.name.c_str(), call.key().c_str(),
                           nameOf(call.phase), attempt.occurrence,
                           attempt.always ? " and all after it" : "", nameOf(attempt.failure));
        SCOPED_TRACE(name);
        watch(name);
        const Prediction prediction(calls_, reference_);
        if (const TracedCall* const unknown = prediction.unknown(attempt)) {
            ADD_FAILURE() << unknown->key() << " in phase " << nameOf(unknown->phase)
                          << " has no row in tests/campaign/fault_rules.cpp: add what the plug-in "
                             "is to answer when it fails";
            return;
        }
        putOnBus(session);
        const kxtest::ProcessResources before = kxtest::processResources();
        const fcsim::Fault fault = faultOf(call, attempt);
        fcsim::addFault(fault);
        const Outcome outcome = runSession(session);
        fcsim::clearFaults();
        EXPECT_TRUE(wasHit(outcome, fault)) << "the call was not reached";
        check(prediction.of(attempt), outcome);
        tried().add(call, attempt.failure);
        for (const kxtest::CameraText& camera : session.cameras) {
            fcsim::setAttached(camera.serial, true);
        }
        EXPECT_EQ(residueOf(outcome, before), "");
        const Outcome next = runSession(session);
        EXPECT_EQ(next.code, reference_.code) << "next run";
        EXPECT_EQ(next.exports, reference_.exports) << "next run";
        EXPECT_EQ(residueOf(next, before), "") << "next run";
    }

    void check(const Expected& expected, const Outcome& outcome) const
    {
        EXPECT_EQ(outcome.code, expected.code) << outcome.text();
        EXPECT_EQ(outcome.thrown, expected.thrown);
        if (!expected.message.empty()) {
            EXPECT_TRUE(logShows(outcome, expected.message)) << "not said: " << expected.message;
        }
        if (expected.silent) {
            EXPECT_FALSE(logTells(outcome, kFaultText)) << "the failure is to be silent";
        }
        if (expected.sameFrames) {
            EXPECT_EQ(outcome.exports, reference_.exports);
        }
    }

    Outcome reference_;
    std::vector<TracedCall> calls_;
};

TEST_P(FaultCampaignTest, EachCallFailsInEachPhase)
{
    tryAll(sessions()[GetParam()], GetParam());
}

INSTANTIATE_TEST_SUITE_P(Sessions, FaultCampaignTest,
                         testing::Range<std::size_t>(0, sessions().size()),
                         [](const auto& one) { return sessions()[one.param].name; });

/// Prints what was tried.
class Report : public testing::Environment {
public:
    void TearDown() override { std::printf("\n%s", tried().text().c_str()); }
};

[[maybe_unused]] testing::Environment* const report = testing::AddGlobalTestEnvironment(new Report);

} // namespace

} // namespace kxcampaign
