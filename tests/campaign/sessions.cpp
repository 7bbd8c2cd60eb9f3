// Reference sessions: whole runs of the plug-in that together reach every call it makes.
#include "sessions.h"

#include "control/sim_control.h"
#include "system_calls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <string_view>
#include <thread>

using kxtest::host;
using kxtest::HostConfig;

namespace kxcampaign {

namespace {

constexpr int kFinish = 1;
constexpr int kReconfigure = 2;
constexpr int kUser1 = 3;
constexpr int kUser2 = 4;

constexpr const char* kColour = "width = 160, height = 120, colour = true, noise = false";
constexpr const char* kMono = "width = 160, height = 120, colour = false, noise = false";

std::vector<std::uint16_t> table(unsigned factor)
{
    std::vector<std::uint16_t> entries(512);
    for (std::size_t entry = 0; entry < entries.size(); ++entry) {
        entries[entry] = static_cast<std::uint16_t>(entry * factor % 512);
    }
    return entries;
}

HostConfig configOf(std::uint8_t format, std::uint32_t frames)
{
    HostConfig config;
    config.format = format;
    config.fnum = frames;
    config.width = 96;
    config.height = 64;
    config.fps = 25;
    return config;
}

/// Automatic functions, colour and look-up table, changed live and by a full reconfiguration.
Session colourSession()
{
    Session session;
    session.name = "Colour";
    session.cameras = {{.sensor = kColour}};
    HostConfig& config = session.config = configOf(5, 8);
    config.satur = 120;
    config.wbred = 500;
    config.wbblu = 600;
    config.gamma = 2;
    config.sweepProf = 1;
    config.sweepGainMod = 2;
    config.sweepEtimeMod = 2;
    config.sweepLutMod = 1;
    config.atbright = 0.6F;
    config.gainlimsLow = 1;
    config.gainlimsHigh = 12;
    config.etlimsLow = 100;
    config.etlimsHigh = 20'000;
    config.tsadjns = 1000;
    config.lutBits = 9;
    config.lut = table(1);
    session.signals = {{6, kReconfigure}};
    session.liveChanges = {3, 4, 5};
    session.onLiveChange = [](unsigned number, HostConfig& now) {
        // Another table, none, and one again.
        now.lut = number == 2 ? std::vector<std::uint16_t>{} : table(number);
    };
    return session;
}

/// Manual values, a camera that takes time to power up, and a finishing signal.
Session manualSession()
{
    Session session;
    session.name = "Manual";
    session.cameras = {{.interface = "usb2",
                        .sensor = kMono,
                        .extra = "power = { behaviour = \"delayed\", reads = 3 }"}};
    HostConfig& config = session.config = configOf(1, 0);
    config.sweepGainMod = 1;
    config.sweepEtimeMod = 1;
    config.gainMan = 6;
    config.exptMan = 5000;
    config.gamma = 1;
    session.signals = {{4, kReconfigure}, {6, kFinish}};
    session.liveChanges = {3};
    session.onLiveChange = [](unsigned /*number*/, HostConfig& now) { now.gainMan = 7; };
    return session;
}

/// Raw Bayer over GigE, converted.
Session gigeSession()
{
    Session session;
    session.name = "GigE";
    session.cameras = {{.interface = "gige", .sensor = kColour}};
    session.config = configOf(9, 5);
    session.config.cformat = 1;
    session.config.datachunk = 9000;
    return session;
}

/// Look-up tables calculated with the camera's off and on, and through 12 bits.
Session lutSession()
{
    Session session;
    session.name = "DynamicLut";
    session.cameras = {{.sensor = kMono}};
    session.config = configOf(1, 8);
    session.signals = {{2, kUser1}, {4, kUser1}, {7, kUser2}};
    return session;
}

/// The second camera of the bus.
Session secondSession()
{
    Session session;
    session.name = "Second";
    session.cameras = {{.serial = 1, .model = "Ant A1", .sensor = kMono},
                       {.serial = 2, .model = "Cricket C1", .sensor = kMono}};
    session.config = configOf(1, 3);
    session.config.model = "Cricket";
    return session;
}

/// A strobe whose pin sends a command in between, and a reply that does not come.
Session ioBoxSession()
{
    constexpr int kGpio0 = 9;
    constexpr int kGpio1 = 10;
    const kxtest::IoboxEntry strobe = {
        .pin = kGpio0, .mode = 1, .inv = 1, .src = 2, .par = {100, 200}};
    const kxtest::IoboxEntry reply = {
        .pin = kGpio1, .mode = 2, .inv = 0, .src = 5, .par = {10, 12}};
    const kxtest::IoboxEntry command = {
        .pin = kGpio0, .mode = 1, .inv = 0, .src = 5, .par = {2, 2}};
    Session session;
    session.name = "IoBox";
    session.cameras = {{.sensor = kMono}};
    session.config = configOf(1, 5);
    session.config.iobox = {strobe, reply};
    session.liveChanges = {3};
    session.onLiveChange = [command](unsigned /*number*/, HostConfig& now) {
        now.iobox = {command};
    };
    session.controlThread = true;
    // Until the pins are configured, before the capture starts; until command and time-out are over
    // and the thread has looked for the camera.
    session.loopsAfter = {{0, 5}, {3, 300}};
    return session;
}

// ---- The host.

/// Pauses that the control thread has made in this run.
std::atomic<unsigned> controlPauses{0};
/// Pauses that it may make: it gets on only while the grab loop waits for it, so that what comes
/// first does not depend on how fast the machine is.
std::atomic<unsigned> allowedPauses{0};
std::atomic<bool> isToEnd{false};
constexpr std::chrono::microseconds kLook{200};

/// Lets the control thread make so many pauses more, and waits for them; less if it ends.
void waitForControlThread(unsigned pauses)
{
    const unsigned wanted = allowedPauses += pauses;
    while (controlPauses < wanted && kxtest::realTimeThreads() > 0) {
        std::this_thread::sleep_for(kLook);
    }
}

/// The control thread waits until it is let on; a pause of the other thread while there is a
/// control thread is one of waiting for its end.
void pauseOf(bool realTime)
{
    if (!realTime) {
        if (kxtest::realTimeThreads() > 0) {
            isToEnd = true;
        }
        return;
    }
    ++controlPauses;
    while (controlPauses > allowedPauses && !isToEnd) {
        std::this_thread::sleep_for(kLook);
    }
}

/// What the host of a run remembers.
struct Script {
    Session session;
    unsigned polls = 0;
    unsigned changes = 0;
    unsigned exported = 0;
};

int signalOf(Script& script)
{
    if (++script.polls > kMostPolls) {
        return kFinish;
    }
    const auto found = script.session.signals.find(script.polls);
    return found == script.session.signals.end() ? 0 : found->second;
}

int holdsLiveChange(Script& script)
{
    const std::vector<unsigned>& polls = script.session.liveChanges;
    if (std::find(polls.begin(), polls.end(), script.polls) == polls.end()) {
        return 0;
    }
    script.session.onLiveChange(++script.changes, host().config);
    return 1;
}

void waitFor(const Script& script, unsigned exported)
{
    const auto found = script.session.loopsAfter.find(exported);
    if (found != script.session.loopsAfter.end()) {
        waitForControlThread(found->second);
    }
}

void fillDistribution(const void* /*pixels*/, std::uint32_t bits, std::uint32_t* cdf)
{
    std::fill_n(cdf, std::size_t{1} << bits, 1U);
}

void fillTable(std::uint32_t bits, const std::uint32_t* /*cdf*/, std::uint16_t* lut)
{
    for (std::size_t entry = 0; entry < std::size_t{1} << bits; ++entry) {
        lut[entry] = static_cast<std::uint16_t>((entry << 12U) >> bits);
    }
}

} // namespace

const std::vector<Session>& sessions()
{
    static const std::vector<Session> all = {colourSession(), manualSession(), gigeSession(),
                                             lutSession(),    secondSession(), ioBoxSession()};
    return all;
}

void putOnBus(const Session& session)
{
    // Nobody looks at the pictures of thousands of runs.
    std::vector<kxtest::CameraText> cameras = session.cameras;
    for (kxtest::CameraText& camera : cameras) {
        camera.extra += "\nscene = { kind = \"none\" }";
    }
    ASSERT_EQ(fcsim::loadBus(kxtest::busText(cameras), session.name), "");
}

void prepareHost(const Session& session)
{
    host().reset();
    host().config = session.config;
    const auto script = std::make_shared<Script>(Script{session});
    host().checkSignal = [script] { return signalOf(*script); };
    host().checkDynConfig = [script] { return holdsLiveChange(*script); };
    host().calcLut = fillDistribution;
    host().getLut = fillTable;
    host().onCall = [script](std::string_view name) {
        if (name == "KxGiMem__Init") {
            waitFor(*script, 0);
        } else if (name == "KxSc__ProcExport") {
            waitFor(*script, ++script->exported);
        }
    };
    controlPauses = 0;
    allowedPauses = 0;
    isToEnd = false;
    kxtest::setRealTime(session.controlThread ? kxtest::RealTime::granted
                                              : kxtest::RealTime::refused);
    kxtest::onUsleep(pauseOf);
}

} // namespace kxcampaign
