// The one gate that every public call of an SDK object passes: register time, faults, record.
#ifndef FCSIM_CALL_GATE_H
#define FCSIM_CALL_GATE_H

#include <FlyCapture2.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

namespace fcsim {

/// The camera that a call talks to, as far as the gate acts on it.
class CallTarget {
public:
    CallTarget() = default;
    CallTarget(const CallTarget&) = delete;
    CallTarget& operator=(const CallTarget&) = delete;
    virtual ~CallTarget() = default;
    /// Serial number of the connected camera, 0 = none.
    virtual unsigned serialNumber() const = 0;
    /// Lets the time pass that one access to the camera's registers takes.
    virtual void passRegisterTime() = 0;
    /// The camera leaves the bus, for so long; 0 = for good.
    virtual void detachCamera(std::uint64_t backAfterUs) = 0;
};

/// Whether a call goes to the camera, which takes register time, or ends in the library.
enum class Reach { library, camera };

/// A call on its way through the gate. The texts live for ever.
struct GateCall {
    const char* object;    ///< class: "BusManager", "Camera", "GigECamera" or "Image"
    const char* operation; ///< member function
    CallTarget* target = nullptr;
    Reach reach = Reach::library;
};

/// True while calls are recorded or faults are set. One relaxed load.
inline std::atomic<bool> gateWatches{false};

/// A call while the gate watches: finds the fault that hits it, and records it at its end.
class WatchedCall {
public:
    /// Throws what the fault says.
    WatchedCall(const GateCall& call, std::string arguments);
    WatchedCall(const WatchedCall&) = delete;
    WatchedCall& operator=(const WatchedCall&) = delete;
    ~WatchedCall();

    /// The answer that a fault gives instead of the operation's own.
    const std::optional<FlyCapture2::Error>& verdict() const { return verdict_; }
    void finish(FlyCapture2::ErrorType result) { result_ = result; }

private:
    void record() const;

    const GateCall& call_;
    std::string arguments_;
    FlyCapture2::ErrorType result_ = FlyCapture2::PGRERROR_FAILED;
    std::optional<FlyCapture2::Error> verdict_;
};

/// Sends a call through the gate: `work` does it, `describe` gives its arguments as text and is
/// only asked when somebody watches.
template <class Describe, class Work>
FlyCapture2::Error throughGate(const GateCall& call, const Describe& describe, const Work& work)
{
    if (call.reach == Reach::camera) {
        call.target->passRegisterTime();
    }
    if (!gateWatches.load(std::memory_order_relaxed)) [[likely]] {
        return work();
    }
    WatchedCall watched(call, describe());
    FlyCapture2::Error answer = watched.verdict() ? *watched.verdict() : work();
    watched.finish(answer.GetType());
    return answer;
}

} // namespace fcsim

#endif
