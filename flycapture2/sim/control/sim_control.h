// In-process control of the simulated cameras: faults, a record of the calls, a clock by hand.
//
// For programs that link the simulation and drive it, above all tests. Everything here is
// thread-safe and acts on the whole process; `reset()` brings back the state at load.
#ifndef FCSIM_SIM_CONTROL_H
#define FCSIM_SIM_CONTROL_H

#include <FlyCapture2.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace fcsim {

#define FCSIM_API __attribute__((visibility("default")))

/// Back to the state at load: bus from the environment or the built-in default, host clock, no
/// faults, no record. REQUIRES: no camera object is connected.
FCSIM_API void reset();

/// Replaces the bus by the one that `toml` describes (docs/simulated-camera.md has the schema).
/// `name` stands for the file in messages. Returns an empty text, or what is wrong with file, line
/// and value; the bus then stays as it was. REQUIRES: no camera object is connected.
FCSIM_API std::string loadBus(std::string_view toml, std::string_view name);

// ---- Clock. All times are microseconds since 1970, as gettimeofday gives them.

/// The simulation's time: the host's clock, or the hand-driven one.
FCSIM_API std::uint64_t nowUs();
/// Stops the simulation's clock at `startUs`. From here on nothing sleeps: a wait for a frame or
/// for a register moves the clock forward by its length instead.
FCSIM_API void useManualClock(std::uint64_t startUs);
/// Moves the hand-driven clock. REQUIRES: `useManualClock` was called.
FCSIM_API void advanceClock(std::uint64_t us);
/// Follows the host's clock again.
FCSIM_API void useHostClock();

// ---- Record of the calls that clients made.

struct Call {
    std::string object;            ///< "BusManager", "Camera", "GigECamera" or "Image"
    std::string operation;         ///< name of the member function, e.g. "ReadRegister"
    std::string arguments;         ///< e.g. "0x1EA8", "GAIN abs=3.5 on"; empty where there are none
    FlyCapture2::ErrorType result; ///< what was answered
    std::thread::id thread{};      ///< that made it
};
/// Starts an empty record; `takeCalls` returns what has come together since, and empties it.
FCSIM_API void recordCalls(bool on);
FCSIM_API std::vector<Call> takeCalls();

// ---- Faults by name. The description of a fault's error begins with "simulated".

struct Fault {
    std::string operation{}; ///< member function to fail, e.g. "RetrieveBuffer"
    std::string detail{};    ///< only calls whose recorded arguments begin with this; "" = all
    unsigned skip = 0;       ///< let this many matching calls pass first
    unsigned count = 1;      ///< then fail this many; 0 = all to come
    FlyCapture2::ErrorType error = FlyCapture2::PGRERROR_FAILED;
    std::string description{}; ///< "" = a text that names the operation
    std::string throws{};      ///< not "": throw std::runtime_error with this text instead
    bool throwsOther = false;  ///< throw an object that is no std::exception instead
    bool detach = false;       ///< the camera leaves the bus with this fault (IsConnected: false)
    std::uint64_t backAfterUs = 0; ///< detach: and is plugged in again so much later; 0 = it is not
    bool skipEffect = false; ///< answer OK but do nothing (outputs stay as the caller set them)
    unsigned serial = 0;     ///< only calls to the camera with this serial number; 0 = all calls
};
FCSIM_API void addFault(const Fault& fault);
FCSIM_API void clearFaults();

// ---- Cameras and frames, by serial number.

/// Pulls the camera off the bus, or plugs it in again, which brings it up as at power-up.
FCSIM_API void setAttached(unsigned serial, bool attached);
/// Reads or overwrites a camera register as seen by ReadRegister, without a call being recorded.
/// An overwritten register keeps the value (reads give it, for the clock register too) until
/// `reset`.
FCSIM_API std::uint32_t peekRegister(unsigned serial, std::uint32_t address);
FCSIM_API void pokeRegister(unsigned serial, std::uint32_t address, std::uint32_t value);

/// What is true of a delivered frame.
struct FrameTruth {
    std::uint64_t number = 0;          ///< frames exposed since StartCapture, 0 based
    std::uint64_t exposureStartUs = 0; ///< on the simulation's clock
    std::uint64_t arrivalUs = 0;       ///< when the frame was complete in host memory
    std::uint32_t exposureUs = 0;
    float gainDb = 0;
};
/// Truth of the frames delivered since the last call, oldest first; at most the newest 65536.
FCSIM_API std::vector<FrameTruth> takeTruth(unsigned serial);

// ---- GPIO pins and I/O boxes. Pins are numbered from 0; unknown ones have no effect, no entries.

/// A line takes a level. Times are on the simulation's clock.
struct LineTransition {
    std::uint64_t atUs = 0;
    bool level = false;
    bool operator==(const LineTransition&) const = default;
};
/// How the camera has driven an output pin since the last call, oldest first; at most the newest
/// 4096 transitions. A line begins low.
FCSIM_API std::vector<LineTransition> takeTransitions(unsigned serial, unsigned pin);
/// Holds the line of an input pin at `level`, or lets it follow `plan` (by rising time; low, or as
/// the I/O box has it, until the first), instead of the I/O box that answers there.
FCSIM_API void drivePin(unsigned serial, unsigned pin, bool level);
FCSIM_API void drivePin(unsigned serial, unsigned pin, std::vector<LineTransition> plan);
/// Leaves the line to the I/O box again.
FCSIM_API void releasePin(unsigned serial, unsigned pin);

enum class IoBoxVerdict {
    good,
    wrongParity,
    garbled, ///< a symbol of more than four pulses, too few or too many symbols
    stuck    ///< the line did not come back to its idle level
};
/// A command that an I/O box has heard, and its answer.
struct IoBoxEntry {
    IoBoxVerdict verdict = IoBoxVerdict::good;
    std::uint32_t word = 0;        ///< without the parity
    unsigned bits = 0;             ///< of the word; always even
    std::uint64_t firstEdgeUs = 0; ///< the first pulse begins
    std::uint64_t lastEdgeUs = 0;  ///< the last pulse ends
    bool answered = false;         ///< the rest is only set if so
    std::uint32_t replyWord = 0;   ///< as configured, whatever happens to it on the way
    unsigned replyBits = 0;
    std::uint64_t replyStartUs = 0; ///< first and last transition of the answer
    std::uint64_t replyEndUs = 0;
};
/// What box `box` of a camera (counted from 0 in the order of its description) has heard since the
/// last call, oldest first; at most the newest 1024 entries.
FCSIM_API std::vector<IoBoxEntry> takeBoxLog(unsigned serial, unsigned box);

/// What a strobe did at one frame.
struct StrobePulse {
    std::uint64_t frame = 0; ///< number of the frame, delivered or not; 0 based since StartCapture
    unsigned pin = 0;
    std::uint64_t exposureStartUs = 0;
    std::uint64_t startUs = 0; ///< the line leaves its resting level
    std::uint64_t endUs = 0;   ///< and comes back
    bool activeHigh = false;   ///< level of the pulse
};
/// Pulses at the frames that have arrived since the last call, in the order of frames and pins; at
/// most the newest 16384.
FCSIM_API std::vector<StrobePulse> takeStrobePulses(unsigned serial);

/// Lets the simulation write to user buffers through another mapping of the same memory: an address
/// in [seen, seen + bytes) is written at the same distance from `writable`. For memory that the
/// client has protected. `bytes` 0 ends it.
FCSIM_API void aliasWrites(const void* seen, void* writable, std::size_t bytes);

} // namespace fcsim

/// For programs that load the simulation at run time: 0 when the bus description that the
/// environment names cannot be used (what is wrong with it is then on standard error), else 1.
extern "C" FCSIM_API int fcsimBusUsable();

#endif
