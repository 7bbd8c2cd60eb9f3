// What the tests of the I/O box's lines share: a camera, its records, entries of the configuration.
#ifndef KX_TEST_IO_FIXTURE_H
#define KX_TEST_IO_FIXTURE_H

#include "camera_test.h"
#include "kx_pg_cthr.h"

#include <ctime>
#include <string>
#include <utility>
#include <vector>

namespace kxtest {

/// What takes the place of a value that is not set.
inline constexpr std::uint32_t kUnset = 0xFFFFFFFF;

/// Ids of the pins of the camera, GPIO 0 to 3.
inline constexpr int kGpio0 = 9;
inline constexpr int kGpio1 = 10;
inline constexpr int kGpio2 = 11;
inline constexpr int kGpio3 = 12;

inline constexpr int kUserData = 5;

inline std::string traceLine(const std::string& function, const std::string& body)
{
    return "7 [t|" + function + "] " + body;
}

/// The entry of a strobe, of a command, and of its reply.
inline IoboxEntry strobe(int pin, int delayUs, int durationUs)
{
    return {.pin = pin, .mode = 1, .inv = 1, .src = 2, .par = {delayUs, durationUs}};
}
inline IoboxEntry command(int pin, int bits, int word)
{
    return {.pin = pin, .mode = 1, .inv = 0, .src = kUserData, .par = {bits, word}};
}
inline IoboxEntry reply(int pin, int timeout, int gap)
{
    return {.pin = pin, .mode = 2, .inv = 0, .src = kUserData, .par = {timeout, gap}};
}

/// Waits until `reached`, at most as long as the time limit of a test.
template <typename Condition>
void waitUntil(const Condition& reached)
{
    while (!reached()) {
        const timespec moment = {0, 200'000};
        nanosleep(&moment, nullptr);
    }
}

/// All of a record, for comparison.
inline std::string textOf(const KxPGrey::IoPinState& pin)
{
    return format("%u %u %u %u %u %u %u %u, %u %u %u %u %u %u %u %u %u %u %u", pin.expoAtCfgUs,
                  pin.param0, pin.param1, pin.dataWord, pin.loopsLeft, pin.pulseCount,
                  pin.idleCount, pin.activeCount, pin.bitCount, pin.bitCountCfg, pin.pinIndex,
                  pin.mode, pin.src, pin.inv, pin.idleLevel, pin.lastLevel, pin.rxWaitInit,
                  pin.pinFree, pin.cfgDirty);
}

/// One connected camera without a control thread; its tests are the thread. The pins are there.
class IoTest : public CameraTest {
protected:
    IoTest()
    {
        connect();
        for (unsigned pin = 0; pin < 4; ++pin) {
            setRegister(pin, 0x80000000);
        }
        journal().clear();
    }

    /// What a pin's control register reads, whatever is written into it.
    static void setRegister(unsigned pin, std::uint32_t value)
    {
        fcsim::pokeRegister(1000, 0x1110 + 0x10 * pin, value);
    }
    KxPGrey::IoPinState& pin(unsigned number) { return cam_->ioPinState[number]; }
    KxPGrey::IoPinState& saved(unsigned number) { return cam_->ioPinSaved[number]; }

    /// One pass of the configuration over the lines, with these entries.
    void configure(std::vector<IoboxEntry> entries)
    {
        host().config.iobox = std::move(entries);
        proc_->ProcParametrizeCamOutLines(cam_.get());
    }
    bool apply() { return KxPGrey::CCamCtrlThread::DoGpioCfg(cam_.get()); }
    bool process() { return KxPGrey::CCamCtrlThread::DoGpioProc(cam_.get()); }
    /// As one loop of the thread does it, without data.
    void configureAndApply(std::vector<IoboxEntry> entries)
    {
        configure(std::move(entries));
        cam_->ioCfgPending = !apply();
        journal().clear();
    }
    static std::vector<std::string> pinWrites()
    {
        return journal().lines({"Camera.WriteRegister"});
    }
};

} // namespace kxtest

#endif
