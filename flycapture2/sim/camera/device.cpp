// One camera on the simulated bus: everything that stays when programs connect and disconnect.
#include "camera/device.h"

#include "base/sdk_error.h"
#include "base/sim_clock.h"
#include "camera/device_info.h"
#include "control/sim_control.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace fcsim {

using FlyCapture2::Error;

namespace {

constexpr double kAbsoluteZeroC = -273.15;

std::string registerText(const char* what, std::uint32_t address)
{
    char text[64];
    std::snprintf(text, sizeof text, "%s of register 0x%X failed", what, address);
    return text;
}

/// Four letters of a colour filter tile as the register holds them.
std::uint32_t tileLetters(FlyCapture2::BayerTileFormat tile)
{
    switch (tile) {
    case FlyCapture2::RGGB:
        return 0x52474742;
    case FlyCapture2::GRBG:
        return 0x47524247;
    case FlyCapture2::GBRG:
        return 0x47425247;
    case FlyCapture2::BGGR:
        return 0x42474752;
    default:
        return 0x59595959; // "YYYY": no colour filter
    }
}

} // namespace

Device::Device(const CameraDescription& description, unsigned index)
    : description_(description), info_(makeCameraInfo(description, index)),
      clock_(description.clock), powered_(description.power.behaviour == PowerUp::on),
      properties_(description.properties), automatic_(properties_, registers_),
      format7Rules_(description.format7), format7_(format7Rules_), lut_(description.lut),
      embedded_(makeEmbeddedInfo(description)), stream_(makeStreamChannel(description)),
      strobes_(description.gpioPins), gpio_(description.gpioPins, description.ioBoxes),
      capture_(*this)
{
    definePowerUpRegisters();
    retime();
}

void Device::definePowerUpRegisters()
{
    registers_.preset(registers::kBayerTile, tileLetters(description_.sensor.tile));
    automatic_.defineLimits();
    for (const auto& [address, value] : description_.registers) {
        if (const std::optional<unsigned> pin = gpio_.pinAt(address)) {
            gpio_.preset(*pin, value);
        } else {
            registers_.preset(address, value);
        }
    }
}

FlyCapture2::PGRGuid Device::guid() const
{
    FlyCapture2::PGRGuid guid;
    guid.value[0] = 0x46435349;
    guid.value[1] = static_cast<unsigned>(description_.interface);
    guid.value[2] = ~description_.serial;
    guid.value[3] = description_.serial;
    return guid;
}

double Device::hostTime()
{
    return static_cast<double>(static_cast<std::int64_t>(nowUs() - clockEpochUs()));
}

bool Device::claim(const void* owner)
{
    const void* nobody = nullptr;
    return attached() && owner_.compare_exchange_strong(nobody, owner, std::memory_order_acq_rel);
}

void Device::release()
{
    gpio_.catchUp(nowUs());
    capture_.disconnect();
    owner_.store(nullptr, std::memory_order_release);
}

void Device::unplug(const Return& comesBack)
{
    if (!attached()) {
        return;
    }
    if (comesBack.maxWidth != 0) {
        format7Rules_.maxWidth = comesBack.maxWidth;
        format7Rules_.maxHeight = comesBack.maxHeight;
    }
    gpio_.powerDown(nowUs());
    backAtUs_.store(comesBack.afterUs == 0 ? 0 : nowUs() + comesBack.afterUs,
                    std::memory_order_release);
    attached_.store(false, std::memory_order_release);
    capture_.wake();
}

void Device::plugIn()
{
    if (!attached()) {
        plugInSince(nowUs());
    }
}

bool Device::attachedByNow()
{
    const std::uint64_t backAtUs = backAtUs_.load(std::memory_order_acquire);
    if (attached() || backAtUs == 0 || nowUs() < backAtUs) {
        return attached();
    }
    const std::lock_guard lock(mutex_);
    if (!attached()) {
        plugInSince(backAtUs);
    }
    return true;
}

void Device::plugInSince(std::uint64_t us)
{
    release();
    powerUp(static_cast<double>(static_cast<std::int64_t>(us - clockEpochUs())));
    backAtUs_.store(0, std::memory_order_release);
    attached_.store(true, std::memory_order_release);
    capture_.wake();
}

void Device::powerUp(double hostUs)
{
    powered_ = description_.power.behaviour == PowerUp::on;
    powerAsked_ = false;
    powerReads_ = 0;
    clock_.restart(hostUs, description_.clock.offsetUs);
    registers_.clear();
    strobes_ = StrobeUnit(description_.gpioPins);
    stream_ = makeStreamChannel(description_);
    properties_ = PropertyBank(description_.properties);
    format7_ = Format7Unit(format7Rules_);
    lut_ = LutStore(description_.lut);
    embedded_ = makeEmbeddedInfo(description_);
    capture_.resetLosses();
    definePowerUpRegisters();
    retime();
}

Error Device::readRegister(std::uint32_t address, std::uint32_t& value)
{
    if (address % 4 != 0) {
        return makeError(FlyCapture2::PGRERROR_READ_REGISTER_FAILED,
                         registerText("unaligned read", address));
    }
    if (address == registers::kPower && !registers_.pinned(address)) {
        Error error = countPowerRead();
        if (error != FlyCapture2::PGRERROR_OK) {
            return error;
        }
    }
    value = peekRegister(address);
    return success();
}

std::uint32_t Device::peekRegister(std::uint32_t address)
{
    if (!registers_.pinned(address)) {
        if (address == registers::kCycleTime) {
            return packCycleTime(clock_.at(hostTime()));
        }
        if (address == registers::kPower) {
            return powered_ ? kPresenceBit : 0;
        }
        if (const std::optional<unsigned> pin = gpio_.pinAt(address)) {
            return gpio_.read(*pin, nowUs());
        }
    }
    return registers_.value(address);
}

Error Device::writeRegister(std::uint32_t address, std::uint32_t value)
{
    if (address % 4 != 0 || address == registers::kCycleTime) {
        return makeError(FlyCapture2::PGRERROR_WRITE_REGISTER_FAILED,
                         registerText("write", address));
    }
    if (address == registers::kPower) {
        writePower(value);
    }
    if (const std::optional<unsigned> pin = gpio_.pinAt(address)) {
        writePin(*pin, value);
    } else {
        registers_.write(address, value);
    }
    return success();
}

void Device::writePin(unsigned pin, std::uint32_t value)
{
    const bool strobed = gpio_.inMode(pin, PinMode::strobe);
    gpio_.write(pin, value, nowUs());
    if (strobed != gpio_.inMode(pin, PinMode::strobe)) {
        capture_.settingsChanged();
    }
}

void Device::writePower(std::uint32_t value)
{
    powerAsked_ = (value & kPresenceBit) != 0;
    powerReads_ = 0;
    if (description_.power.behaviour == PowerUp::on) {
        powered_ = powerAsked_;
    } else if (!powerAsked_) {
        powered_ = false;
    }
}

Error Device::countPowerRead()
{
    const PowerDescription& power = description_.power;
    ++powerReads_;
    const bool waitOver = powerReads_ > power.reads;
    if (power.behaviour == PowerUp::timeout && (power.reads == 0 || !waitOver)) {
        return makeError(FlyCapture2::PGRERROR_TIMEOUT,
                         registerText("time-out: read", registers::kPower));
    }
    if (powerAsked_ && power.behaviour != PowerUp::never && waitOver) {
        powered_ = true;
    }
    return success();
}

void Device::setEmbedded(const FlyCapture2::EmbeddedImageInfo& wanted)
{
    const auto items = embeddedItems(embedded_);
    const auto asked = embeddedItems(wanted);
    for (unsigned i = 0; i < kEmbeddedCount; ++i) {
        items[i]->onOff = items[i]->available && asked[i]->onOff;
    }
}

Error Device::stats(FlyCapture2::CameraStats& stats) const
{
    stats = FlyCapture2::CameraStats();
    const LossCounters& losses = capture_.losses();
    stats.imageDropped = losses.dropped;
    stats.imageCorrupt = losses.corrupt;
    stats.imageXmitFailed = losses.transmission;
    stats.imageDriverDropped = losses.driver;
    stats.cameraPowerUp = powered_;
    stats.temperature =
        static_cast<unsigned>(std::lround((description_.temperatureC - kAbsoluteZeroC) * 10));
    const double now = hostTime();
    stats.timeSinceInitialization = static_cast<unsigned>(std::max(0.0, now / 1e6));
    stats.timeSinceBusReset = stats.timeSinceInitialization;
    stats.timeStamp = timeStampOf(clock_.at(now));
    return success();
}

} // namespace fcsim
