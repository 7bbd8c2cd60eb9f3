// The I/O box's lines: from the host's configuration to the pins' records.
#include "kx_host.h"
#include "kx_iobox.h"
#include "kx_log.h"
#include "kx_pg_proc.h"
#include "kx_pg_shared.h"

#include <algorithm>
#include <iterator>

#define KX_LOG_TAG "KX_PG_PROC"

namespace KxPGrey {

namespace {

/// The function that the messages of the helpers belong to.
constexpr const char* kCaller = "ProcParametrizeCamOutLines";

/// Entries that are looked at, although there is one pin more.
constexpr std::uint32_t kEntries = 3;
/// Id of the pin that is the camera's GPIO 0.
constexpr std::uint32_t kFirstGpioId = 9;

/// One entry of the host's configuration.
struct Entry {
    unsigned int set;
    std::uint32_t pinId;
    std::uint8_t mode;
    std::uint8_t inv;
    std::uint8_t src;
    std::uint32_t param0 = kIoNone;
    std::uint32_t param1 = kIoNone;
};

Entry readEntry(unsigned int set)
{
    const int index = static_cast<int>(set);
    Entry entry{.set = set, .pinId = 0, .mode = 0, .inv = 0, .src = 0};
    entry.pinId = static_cast<std::uint32_t>(KxGiMainCtx__GetIoboxPin(index));
    entry.mode = static_cast<std::uint8_t>(KxGiMainCtx__GetIoboxMod(index));
    entry.inv = static_cast<std::uint8_t>(KxGiMainCtx__GetIoboxInv(index));
    entry.src = static_cast<std::uint8_t>(KxGiMainCtx__GetIoboxSrc(index));
    return entry;
}

void readParameters(Entry& entry)
{
    if (isStrobe(entry.src) || entry.src == kIoUserData) {
        const int index = static_cast<int>(entry.set);
        entry.param0 = static_cast<std::uint32_t>(KxGiMainCtx__GetIoboxPar(index, 0));
        entry.param1 = static_cast<std::uint32_t>(KxGiMainCtx__GetIoboxPar(index, 1));
    }
}

const char* nameOf(std::uint32_t pinId)
{
    return KxCfgIoPinMapT[pinId < std::size(KxCfgIoPinMapT) ? pinId : 0].name;
}

/// The record of the pin, or null when the camera has no such pin.
IoPinState* recordOf(CExCam& cam, std::uint32_t pinId)
{
    const std::uint32_t pin = pinId - kFirstGpioId;
    return pin < kPgPinCount ? &cam.ioPinState[pin] : nullptr;
}

/// Whether the control thread has nothing to do with the pin. It raises the pending flag before it
/// gives a pin back that it wants to configure itself.
bool isFree(CExCam& cam, IoPinState& pin)
{
    return shared::look(pin.pinFree) != 0 && !shared::look(cam.ioCfgPending);
}

/// Whether a strobe is not the one that is set, or was capped with another exposure time.
bool strobeChanged(CExCam& cam, IoPinState& pin, const Entry& entry)
{
    if (!isStrobe(entry.src)) {
        return false;
    }
    return entry.param0 != shared::get(pin.param0) || entry.param1 != shared::get(pin.param1) ||
           (entry.param1 != kIoNone && cam.expoTimeUs != shared::get(pin.expoAtCfgUs));
}

/// Whether the entry is what the pin does already; a command is to be sent each time.
bool isInForce(IoPinState& pin, const Entry& entry)
{
    const bool command = entry.src == kIoUserData && entry.mode == kIoOutput;
    return !command && entry.mode == shared::get(pin.mode) && entry.inv == shared::get(pin.inv) &&
           entry.src == shared::get(pin.src);
}

void apply(IoPinState& pin, IoPinState& saved, const Entry& entry)
{
    copyIoPin(saved, pin);
    shared::set(pin.param0, entry.param0);
    shared::set(pin.param1, entry.param1);
    shared::set(pin.mode, entry.mode);
    shared::set(pin.src, entry.src);
    shared::set(pin.inv, entry.inv);
    shared::handOver(pin.cfgDirty, 1);
}

/// Returns whether the control thread has something to apply.
bool configure(CExCam& cam, unsigned int set)
{
    Entry entry = readEntry(set);
    IoPinState* const pin = recordOf(cam, entry.pinId);
    if (pin == nullptr) {
        KX_LOG_W_AS(kCaller, "The Pin '%s' is not supported for this device\n",
                    nameOf(entry.pinId));
        return false;
    }
    if (!isFree(cam, *pin)) {
        KX_LOG_W_AS(kCaller, "The Pin '%s' can't be reconfigured right now, pls come later...\n",
                    nameOf(entry.pinId));
        return false;
    }
    readParameters(entry);
    KX_LOG_I(" Cfg IoBox set %u: Pin '%s', Mod %d, Src %d, Inv %d (param[0]=%u, param[1]=%u)\n",
             set, nameOf(entry.pinId), entry.mode, entry.src, entry.inv, entry.param0,
             entry.param1);
    if (!strobeChanged(cam, *pin, entry) && isInForce(*pin, entry)) {
        KX_LOG_I(" Cfg IoBox set %u: no config changes are detected, skipped\n", set);
        return false;
    }
    apply(*pin, cam.ioPinSaved[entry.pinId - kFirstGpioId], entry);
    return true;
}

} // namespace

void CCamProc::ProcParametrizeCamOutLines(CExCam* cam)
{
    const std::uint32_t entries = KxGiMainCtx__GetIoboxNum();
    const bool pending = shared::look(cam->ioCfgPending);
    KX_LOG_I("IoBox settings handler entry: numCfg %u (allowed cfg? - \"%s\")\n", entries,
             pending ? "NO" : "YES");
    if (pending) {
        return;
    }
    bool applied = false;
    for (unsigned int set = 0; set < std::min(entries, kEntries); ++set) {
        applied = configure(*cam, set) || applied;
    }
    // Clear it is already, unless the control thread has raised it meanwhile.
    if (applied) {
        shared::handOver(cam->ioCfgPending, true);
    }
}

} // namespace KxPGrey
