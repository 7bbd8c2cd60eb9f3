// One run of a reference session: what came of it, and which phase each call of the SDK fell into.
#include "campaign_run.h"

#include "kx_plugin.h"

#include <algorithm>
#include <array>
#include <exception>
#include <map>
#include <thread>

using kxtest::Event;
using kxtest::Kind;

namespace kxcampaign {

namespace {

constexpr std::array<const char*, kPhases> kPhaseNames = {
    "inventory",     "rejection",   "selection",     "power-up", "stream",
    "configuration", "parameters",  "capture start", "capture",  "live",
    "reconfig",      "dynamic LUT", "I/O box",       "teardown"};

/// What marks the begin of a phase: part of a log line.
struct Mark {
    const char* text;
    Phase phase;
};
constexpr std::array kMarks = {
    Mark{"KxPgProc entry", Phase::streamChannel},
    Mark{"Using device Model", Phase::configuration},
    Mark{"Applying initial configuration", Phase::parameters},
    Mark{"initial configuration is applied", Phase::captureStart},
    Mark{"images, dynamic reconfiguration", Phase::liveChange},
    Mark{"images, reconfiguration", Phase::reconfiguration},
    Mark{"finishing with signal", Phase::teardown},
    Mark{"scenario is completed", Phase::teardown},
};

/// Follows a run from event to event.
class PhaseTracker {
public:
    void take(const Event& event)
    {
        if (event.kind == Kind::log) {
            takeLog(event.arguments);
        } else if (event.kind == Kind::sdk) {
            takeCall(event);
        } else if (event.name == "KxGi__ResetTermSigProc") {
            inLoop_ = true;
            phase_ = grabbing();
        } else if (event.name == "KxGi__SetTermSigProc") {
            inLoop_ = false;
            // Between the loops of a 12-bit pass there is a configuration.
            phase_ = lutPass_ ? Phase::configuration : Phase::teardown;
        }
    }
    /// Of the call just taken.
    Phase phase(const Event& call, std::thread::id grabThread) const
    {
        if (call.thread != grabThread) {
            return Phase::ioBox;
        }
        const bool stops = call.name == "Camera.StopCapture" && phase_ == Phase::capture;
        return stops ? Phase::teardown : phase_;
    }
    bool inLoop() const { return inLoop_; }

private:
    Phase grabbing() const { return lutPass_ ? Phase::dynamicLut : Phase::capture; }

    void takeLog(const std::string& line)
    {
        const auto says = [&line](const char* text) {
            return line.find(text) != std::string::npos;
        };
        if (says("processing SIGUSR")) {
            lutPass_ = true;
            phase_ = Phase::dynamicLut;
        } else if (says("continue operation with new LUT")) {
            lutPass_ = false;
            phase_ = Phase::capture;
        } else if (says("done, spent")) {
            phase_ = grabbing();
        } else if (says("Using device Model")) {
            lutPass_ = false;
            phase_ = Phase::configuration;
        } else {
            const auto mark = std::find_if(kMarks.begin(), kMarks.end(),
                                           [&](const Mark& one) { return says(one.text); });
            phase_ = mark == kMarks.end() ? phase_ : mark->phase;
        }
    }
    void takeCall(const Event& call)
    {
        // The inventory asks the bus about each camera, and so does the selection after it.
        if (call.name == "BusManager.GetCameraFromIndex" && call.arguments == "0" &&
            ++firstAsked_ == 2) {
            phase_ = Phase::selection;
        }
        if (call.name == "Camera.WriteRegister" && call.arguments.starts_with("0x610")) {
            phase_ = Phase::powerUp;
        }
    }

    Phase phase_ = Phase::inventory;
    bool inLoop_ = false;
    bool lutPass_ = false;
    unsigned firstAsked_ = 0;
};

/// The first word, unless it is one value of many.
std::string detailOf(const std::string& arguments)
{
    std::string word = arguments.substr(0, arguments.find(' '));
    return word.find('=') == std::string::npos ? word : std::string();
}

/// All that was asked of cameras before the chosen one.
void markRejected(std::vector<TracedCall>& calls)
{
    std::size_t lastAsked = 0;
    for (std::size_t index = 0; index < calls.size(); ++index) {
        const bool selecting = calls[index].phase == Phase::selection;
        if (selecting && calls[index].operation == "GetCameraFromIndex") {
            lastAsked = index;
        }
    }
    for (std::size_t index = 0; index < lastAsked; ++index) {
        if (calls[index].phase == Phase::selection) {
            calls[index].phase = Phase::rejection;
        }
    }
}

/// As the simulation counts calls that match a fault.
unsigned countMatching(const std::vector<const Event*>& calls, const std::string& operation,
                       const std::string& detail)
{
    return static_cast<unsigned>(std::count_if(calls.begin(), calls.end(), [&](const Event* call) {
        return call->name.ends_with("." + operation) && call->arguments.starts_with(detail);
    }));
}

/// Begin of a line of the system log by its level.
std::string headOf(char level)
{
    switch (level) {
    case 'e':
        return "[e|";
    case 'w':
        return "[w|";
    case 'i':
        return "[i] ";
    default:
        return "[d|";
    }
}

} // namespace

const char* nameOf(Phase phase)
{
    return kPhaseNames[static_cast<std::size_t>(phase)];
}

std::string TracedCall::key() const
{
    return object + "." + operation + (detail.empty() ? "" : " " + detail);
}

std::string Outcome::text() const
{
    const std::string result =
        code ? "code " + std::to_string(*code) : "the exception \"" + thrown + "\"";
    return result + " and " + std::to_string(exports) + " exports";
}

Outcome runSession(const Session& session, const std::function<void()>& adjust)
{
    prepareHost(session);
    if (adjust) {
        adjust();
    }
    kxtest::journal().clear();
    Outcome outcome;
    try {
        outcome.code = KxLibProc();
    } catch (const std::exception& exception) {
        outcome.thrown = exception.what();
    } catch (...) {
        outcome.thrown = "?";
    }
    outcome.events = kxtest::journal().events();
    outcome.exports = kxtest::host().exports.size();
    return outcome;
}

bool logShows(const Outcome& outcome, const std::string& message)
{
    return std::any_of(outcome.events.begin(), outcome.events.end(), [&](const Event& event) {
        return event.kind == Kind::log && event.arguments.starts_with(headOf(message[0])) &&
               event.arguments.find(message.substr(1)) != std::string::npos;
    });
}

std::vector<TracedCall> trace(const Outcome& outcome)
{
    std::vector<TracedCall> traced;
    std::vector<const Event*> earlier;
    PhaseTracker tracker;
    for (const Event& event : outcome.events) {
        tracker.take(event);
        if (event.kind != Kind::sdk) {
            continue;
        }
        const std::size_t dot = event.name.find('.');
        TracedCall call;
        call.phase = tracker.phase(event, std::this_thread::get_id());
        call.object = event.name.substr(0, dot);
        call.operation = event.name.substr(dot + 1);
        call.detail = detailOf(event.arguments);
        call.before = countMatching(earlier, call.operation, call.detail);
        call.inLoop = tracker.inLoop() && call.phase != Phase::ioBox;
        traced.push_back(std::move(call));
        earlier.push_back(&event);
    }
    markRejected(traced);
    return traced;
}

} // namespace kxcampaign
