// One camera on the simulated bus: everything that stays when programs connect and disconnect.
#include "device.h"

#include "device_info.h"
#include "sdk_error.h"
#include "sim_clock.h"
#include "sim_control.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace fcsim {

using FlyCapture2::Error;

namespace {

constexpr double kAbsoluteZeroC = -273.15;
/// Exposure of a camera without a SHUTTER property.
constexpr double kFixedExposureUs = 10'000;

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
      clock_(description.clock.offsetUs, description.clock.driftPpm, description.clock.wrapSeconds),
      powered_(description.power.behaviour == PowerUp::on), properties_(description.properties),
      format7_(description.format7), lut_(description.lut),
      embedded_(makeEmbeddedInfo(description)), stream_(makeStreamChannel(description)),
      strobes_(description.gpioPins), capture_(*this)
{
    definePowerUpRegisters();
    retime();
}

void Device::definePowerUpRegisters()
{
    registers_.preset(registers::kBayerTile, tileLetters(description_.sensor.tile));
    // Shutter from 10 us to 33 ms in steps of 10 us, gain from 0 to 24 dB in steps of 0.1 dB.
    registers_.define(registers::kAutoShutterRange, kPresenceBit | 1U << 12U | 0xCE4U);
    registers_.define(registers::kAutoGainRange, kPresenceBit | 240U);
    for (unsigned pin = 0; pin < description_.gpioPins; ++pin) {
        registers_.define(registers::kGpioControl + 16 * pin, kPresenceBit);
    }
    for (const auto& [address, value] : description_.registers) {
        registers_.preset(address, value);
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
    capture_.disconnect();
    owner_.store(nullptr, std::memory_order_release);
}

void Device::setAttached(bool attached)
{
    if (attached == this->attached()) {
        return;
    }
    if (attached) {
        release();
        powered_ = description_.power.behaviour == PowerUp::on;
        powerAsked_ = false;
    }
    attached_.store(attached, std::memory_order_release);
    capture_.wake();
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

std::uint32_t Device::peekRegister(std::uint32_t address) const
{
    if (const auto pinned = registers_.pinned(address)) {
        return *pinned;
    }
    switch (address) {
    case registers::kCycleTime:
        return packCycleTime(clock_.at(hostTime()));
    case registers::kPower:
        return powered_ ? kPresenceBit : 0;
    default:
        return registers_.read(address);
    }
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
    registers_.write(address, value);
    return success();
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

Error Device::setProperty(const FlyCapture2::Property& property)
{
    Error error = properties_.set(property);
    if (error == FlyCapture2::PGRERROR_OK) {
        retime();
    }
    return error;
}

void Device::formatChanged()
{
    retime();
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

double Device::transferUs() const
{
    const double bandwidth = description_.delivery.bandwidth * format7_.share();
    return static_cast<double>(format7_.frameSize()) / bandwidth * 1e6;
}

double Device::highestRate() const
{
    const double sensor = description_.frameRate * description_.sensor.height /
                          std::max(1U, format7_.settings().height);
    return std::min({1e6 / std::max(exposureUs(), 1.0), 1e6 / transferUs(), sensor});
}

double Device::exposureUs() const
{
    return properties_.present(FlyCapture2::SHUTTER)
               ? 1000.0 * properties_.absolute(FlyCapture2::SHUTTER)
               : kFixedExposureUs;
}

FrameTiming Device::timing() const
{
    FrameTiming timing;
    timing.periodUs = periodUs_;
    timing.exposureUs = exposureUs();
    timing.transferUs = transferUs();
    timing.gainDb = properties_.absolute(FlyCapture2::GAIN);
    timing.gainRaw = properties_.raw(FlyCapture2::GAIN);
    timing.shutterRaw = properties_.raw(FlyCapture2::SHUTTER);
    return timing;
}

void Device::retime()
{
    const double highest = highestRate();
    properties_.limit(FlyCapture2::FRAME_RATE, static_cast<float>(highest));
    double rate = highest;
    if (properties_.switchedOn(FlyCapture2::FRAME_RATE)) {
        rate = std::min(rate, static_cast<double>(properties_.absolute(FlyCapture2::FRAME_RATE)));
    }
    periodUs_ = clock_.toHost(1e6 / rate);
    capture_.timingChanged();
}

} // namespace fcsim
