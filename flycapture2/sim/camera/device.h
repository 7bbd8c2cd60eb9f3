// One camera on the simulated bus: everything that stays when programs connect and disconnect.
#ifndef FCSIM_DEVICE_H
#define FCSIM_DEVICE_H

#include "camera/auto_functions.h"
#include "camera/camera_clock.h"
#include "camera/format7_unit.h"
#include "camera/lut_store.h"
#include "camera/property_bank.h"
#include "camera/register_file.h"
#include "capture/capture.h"
#include "description/bus_description.h"
#include "pins/gpio_bank.h"
#include "pins/gpio_strobe.h"

#include <FlyCapture2.h>

#include <atomic>
#include <cstdint>
#include <mutex>

namespace fcsim {

/// A camera. `mutex()` guards all members but those that say otherwise; hold it for each call.
class Device {
public:
    Device(const CameraDescription& description, unsigned index);

    std::mutex& mutex() { return mutex_; }

    // ---- Any thread, without the mutex.

    const CameraDescription& description() const { return description_; }
    FlyCapture2::PGRGuid guid() const;
    const FlyCapture2::CameraInfo& cameraInfo() const { return info_; }
    /// How long a call that talks to the camera takes, in whole microseconds.
    std::uint64_t registerUs() const { return static_cast<std::uint64_t>(description_.registerUs); }
    bool attached() const { return attached_.load(std::memory_order_acquire); }
    /// The same after it was plugged in if the time for that has come. Takes the mutex then.
    bool attachedByNow();
    /// True while `owner` is the one that the camera is connected to, attached or not.
    bool ownedBy(const void* owner) const
    {
        return owner_.load(std::memory_order_acquire) == owner;
    }
    bool owned() const { return owner_.load(std::memory_order_acquire) != nullptr; }
    /// Microseconds since the camera clocks were started, on the host's side.
    static double hostTime();
    Capture& capture() { return capture_; }

    // ---- Connection.

    /// Connects `owner`; false when another one is connected or the camera is not attached.
    bool claim(const void* owner);
    /// Ends the connection and the capture.
    void release();
    /// Pulls the camera off the bus; `comesBack` says for how long.
    void unplug(const Return& comesBack);
    /// Plugs it in, as it is at power-up.
    void plugIn();

    // ---- What the SDK's camera objects offer.

    FlyCapture2::Error readRegister(std::uint32_t address, std::uint32_t& value);
    FlyCapture2::Error writeRegister(std::uint32_t address, std::uint32_t value);
    /// As a read would give it, without its effects.
    std::uint32_t peekRegister(std::uint32_t address);
    void pinRegister(std::uint32_t address, std::uint32_t value) { registers_.pin(address, value); }
    bool powered() const { return powered_; }
    FlyCapture2::Error setProperty(const FlyCapture2::Property& property);
    /// Region or format changed.
    void formatChanged();
    /// `error` is what a call that changes a look-up table has answered; returns it.
    FlyCapture2::Error lutChanged(const FlyCapture2::Error& error);
    FlyCapture2::Error stats(FlyCapture2::CameraStats& stats) const;
    void setEmbedded(const FlyCapture2::EmbeddedImageInfo& wanted);

    CycleTime cycleTime(double hostUs) const { return clock_.at(hostUs); }
    void stepClock(double us) { clock_.step(us); }
    /// What frames are taken with as everything is set now.
    FrameSettings frameSettings() const;
    /// True while automatic functions want to see the frames.
    bool metering() const { return automatic_.active(); }
    /// Shows them one: taken with `frame`, of the mean level `level`. Returns whether they changed
    /// what frames are taken with.
    bool metered(const FrameSettings& frame, double level);
    FlyCapture2::BayerTileFormat tile() const { return description_.sensor.tile; }
    PropertyBank& properties() { return properties_; }
    Format7Unit& format7() { return format7_; }
    LutStore& lut() { return lut_; }
    const FlyCapture2::EmbeddedImageInfo& embedded() const { return embedded_; }
    FlyCapture2::GigEStreamChannel& streamChannel() { return stream_; }
    const StrobeUnit& strobes() const { return strobes_; }
    /// A strobe that is switched on takes its pin.
    FlyCapture2::Error setStrobe(const FlyCapture2::StrobeControl& control);
    GpioBank& gpio() { return gpio_; }

private:
    /// Most frames a second that region and bus allow.
    double deliveryRate() const;
    double transferUs() const;
    double exposureUs() const;
    SensorState sensorState() const;
    /// Lets frame rate and shutter limit each other anew.
    void retime();
    FlyCapture2::Error countPowerRead();
    void writePower(std::uint32_t value);
    void writePin(unsigned pin, std::uint32_t value);
    StrobeSettings strobesInForce() const;
    void definePowerUpRegisters();
    /// What was set is lost, and the clock starts anew, as it has shown since `hostUs`.
    void powerUp(double hostUs);
    void plugInSince(std::uint64_t us);

    const CameraDescription description_;
    const FlyCapture2::CameraInfo info_;
    std::atomic<bool> attached_{true};
    std::atomic<const void*> owner_{nullptr};
    std::atomic<std::uint64_t> backAtUs_{0}; ///< on the simulation's clock; 0 = it is not awaited

    std::mutex mutex_;
    CameraClock clock_;
    RegisterFile registers_;
    double periodUs_ = 0; ///< between frames, on the host's clock
    bool powered_ = false;
    bool powerAsked_ = false;
    unsigned powerReads_ = 0; ///< of the power register since power was asked for
    PropertyBank properties_;
    AutoFunctions automatic_;
    Format7Description format7Rules_; ///< as they are from the next power-up on
    Format7Unit format7_;
    LutStore lut_;
    FlyCapture2::EmbeddedImageInfo embedded_;
    FlyCapture2::GigEStreamChannel stream_;
    StrobeUnit strobes_;
    GpioBank gpio_;
    Capture capture_;
};

} // namespace fcsim

#endif
