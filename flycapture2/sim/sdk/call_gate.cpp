// The one gate that every public call of an SDK object passes: register time, faults, record.
#include "sdk/call_gate.h"

#include "base/sdk_error.h"
#include "control/sim_control.h"

#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace fcsim {

namespace {

/// What `throwsOther` throws: no std::exception.
struct SimulatedThrow {};

/// Faults that are set and calls that were made; guarded by `mutex`.
struct Watch {
    std::mutex mutex;
    std::vector<Fault> faults;
    bool recording = false;
    std::vector<Call> calls;

    void update() { gateWatches.store(recording || !faults.empty(), std::memory_order_relaxed); }
};

Watch& watch()
{
    // Never destroyed: calls may still come from destructors at the end of the process.
    static auto* const instance = new Watch;
    return *instance;
}

bool matches(const Fault& fault, const GateCall& call, const std::string& arguments)
{
    if (fault.operation != call.operation || !arguments.starts_with(fault.detail)) {
        return false;
    }
    return fault.serial == 0 ||
           (call.target != nullptr && call.target->serialNumber() == fault.serial);
}

/// The first fault that hits the call, used up by one.
std::optional<Fault> takeFault(const GateCall& call, const std::string& arguments)
{
    Watch& all = watch();
    const std::lock_guard lock(all.mutex);
    for (auto fault = all.faults.begin(); fault != all.faults.end(); ++fault) {
        if (!matches(*fault, call, arguments)) {
            continue;
        }
        if (fault->skip > 0) {
            --fault->skip;
            continue;
        }
        Fault hit = *fault;
        if (fault->count > 0 && --fault->count == 0) {
            all.faults.erase(fault);
            all.update();
        }
        return hit;
    }
    return std::nullopt;
}

FlyCapture2::Error answerOf(const Fault& fault)
{
    if (fault.skipEffect || fault.error == FlyCapture2::PGRERROR_OK) {
        return success();
    }
    const std::string& text = fault.description;
    return makeError(fault.error, text.empty() ? "simulated failure of " + fault.operation
                                               : "simulated: " + text);
}

} // namespace

WatchedCall::WatchedCall(const GateCall& call, std::string arguments)
    : call_(call), arguments_(std::move(arguments))
{
    const std::optional<Fault> fault = takeFault(call, arguments_);
    if (!fault) {
        return;
    }
    if (fault->detach && call.target != nullptr) {
        call.target->detachCamera(fault->backAfterUs);
    }
    if (fault->throwsOther || !fault->throws.empty()) {
        record();
        if (fault->throwsOther) {
            throw SimulatedThrow{};
        }
        throw std::runtime_error(fault->throws);
    }
    verdict_ = answerOf(*fault);
}

WatchedCall::~WatchedCall()
{
    record();
}

void WatchedCall::record() const
{
    Watch& all = watch();
    const std::lock_guard lock(all.mutex);
    if (all.recording) {
        all.calls.push_back(
            {call_.object, call_.operation, arguments_, result_, std::this_thread::get_id()});
    }
}

void addFault(const Fault& fault)
{
    Watch& all = watch();
    const std::lock_guard lock(all.mutex);
    all.faults.push_back(fault);
    all.update();
}

void clearFaults()
{
    Watch& all = watch();
    const std::lock_guard lock(all.mutex);
    all.faults.clear();
    all.update();
}

void recordCalls(bool on)
{
    Watch& all = watch();
    const std::lock_guard lock(all.mutex);
    all.recording = on;
    all.calls.clear();
    all.update();
}

std::vector<Call> takeCalls()
{
    Watch& all = watch();
    const std::lock_guard lock(all.mutex);
    return std::exchange(all.calls, {});
}

} // namespace fcsim
