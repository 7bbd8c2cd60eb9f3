// What a bus description says: the cameras on the simulated bus and all that is known of each.
//
// Plain data. The defaults here are the defaults of the keys; docs/simulated-camera.md has the
// keys.
#ifndef FCSIM_BUS_DESCRIPTION_H
#define FCSIM_BUS_DESCRIPTION_H

#include "control/sim_control.h"
#include "description/io_box_description.h"
#include "scene/renderer.h"

#include <FlyCapture2.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fcsim {

/// Number of property types that a camera can have (BRIGHTNESS to TEMPERATURE).
inline constexpr unsigned kPropertyCount = 18;
/// Number of items that a camera can embed into a frame.
inline constexpr unsigned kEmbeddedCount = 10;

/// One property of a camera. Raw and absolute range map linearly onto each other.
struct PropertyDescription {
    bool present = false;
    bool autoSupported = false;
    bool manualSupported = true;
    bool onOffSupported = false;
    bool onePushSupported = false;
    bool absSupported = true;
    bool readOutSupported = true;
    unsigned rawMin = 0;
    unsigned rawMax = 1023;
    float absMin = 0;
    float absMax = 100;
    float step =
        0; ///< absolute values are rounded to multiples of it above `absMin`; 0: they are not
    float value = 0;   ///< absolute value at power-up
    unsigned rawA = 0; ///< raw values at power-up of a property without absolute values
    unsigned rawB = 0;
    bool on = true;
    bool automatic = false;
    std::string units;
    std::string unitAbbreviation;
};

/// Rules for regions and packets of the one Format7 mode, MODE_0.
struct Format7Description {
    bool supported = true;
    unsigned maxWidth = 0; ///< 0: as the sensor
    unsigned maxHeight = 0;
    unsigned offsetHStep = 2;
    unsigned offsetVStep = 2;
    unsigned sizeHStep = 16;
    unsigned sizeVStep = 2;
    unsigned packetRecommended = 0; ///< bytes; 0: by interface
    unsigned packetMin = 0;
    unsigned packetMax = 0;
    unsigned packetUnit = 0;
    std::vector<FlyCapture2::PixelFormat> pixelFormats; ///< the first is in force at power-up
};

struct LutDescription {
    bool supported = true;
    unsigned banks = 2;
    unsigned channels = 1;
    unsigned entries = 512;
    unsigned inputBits = 9;
    unsigned outputBits = 9;
};

enum class PowerUp {
    on,      ///< powered whatever is written
    delayed, ///< on after some reads that follow the request
    never,   ///< the top bit never appears
    timeout  ///< reads of the power register time out
};

struct PowerDescription {
    PowerUp behaviour = PowerUp::on;
    unsigned reads = 0; ///< delayed: reads that still say off; timeout: reads that fail, 0 = all
};

struct ClockDescription {
    double offsetUs = 1'000'000; ///< what the camera clock shows when the bus is loaded
    double driftPpm = 0;         ///< how much faster than the host's clock it runs
    double wanderPpm = 0;        ///< how far its rate swings about that, as a sine
    double wanderSeconds = 300;  ///< period of that swing on the host's clock
    unsigned wrapSeconds = 128;  ///< 1 to 128
};

struct DeliveryDescription {
    double latencyUs = 200; ///< from the end of the transfer to the frame being complete in memory
    double jitterUs = 0;    ///< up to this much is added to it, evenly distributed
    double spikeShare = 0;  ///< share of the frames, 0 to 1, that are late by `spikeUs` more
    double spikeUs = 0;     ///< how late those are
    std::uint64_t seed = 1; ///< of jitter and spikes
    double bandwidth = 0;   ///< bytes a second at the largest packet size; 0: by interface
    bool paced = true;      ///< false: each retrieval delivers the next frame at once
};

struct StreamChannelDescription {
    unsigned count = 1;
    unsigned packetSize = 1400;
    unsigned packetDelay = 400;
    bool doNotFragment = true;
};

/// What happens to certain frames.
enum class FrameFaultKind {
    lose,      ///< the frame is lost on its way
    error,     ///< the retrieval fails instead
    corrupt,   ///< part of the picture is missing, the retrieval fails with a consistency error
    counter,   ///< the embedded frame counter is `amount` too large
    clockStep, ///< the camera clock jumps by `amount` microseconds before the frame
    stall,     ///< from here on nothing arrives
    detach,    ///< the camera leaves the bus
};

/// How a camera that leaves the bus comes back.
struct Return {
    std::uint64_t afterUs = 0; ///< how long it is away; 0 = it stays away
    unsigned maxWidth = 0;     ///< largest region that it then has; 0 = as before
    unsigned maxHeight = 0;
};

struct FrameFault {
    FrameFaultKind kind = FrameFaultKind::lose;
    std::uint64_t frame = 0; ///< first frame concerned, counted from the start of capture
    std::uint64_t count = 1; ///< how many frames in a row
    double amount = 0;
    std::string text;   ///< error: of the description
    unsigned times = 1; ///< detach: so often, then it does not happen any more; 0 = always
    Return comesBack;   ///< detach: how
};

struct CameraDescription {
    std::string model;
    std::string vendor = "Point Grey Research";
    unsigned serial = 0;
    FlyCapture2::InterfaceType interface = FlyCapture2::INTERFACE_USB3;
    std::string firmware = "2.15.3.0";
    std::string sensorInfo;
    std::string sensorResolution; ///< empty: made of the sensor's size
    double frameRate = 60;        ///< frames a second of the sensor at full height
    double temperatureC = 42;
    double registerUs = 30; ///< how long a call that talks to the camera takes at least
    unsigned gpioPins = 4;
    std::vector<IoBoxDescription> ioBoxes;
    std::string detachException; ///< not empty: a detach throws this from RetrieveBuffer
    std::map<std::uint32_t, std::uint32_t> registers; ///< values at power-up
    SensorSettings sensor;
    SceneSettings scene;
    Format7Description format7;
    std::array<PropertyDescription, kPropertyCount> properties;
    LutDescription lut;
    std::array<bool, kEmbeddedCount> embedded{}; ///< in the order of EmbeddedImageInfo
    PowerDescription power;
    ClockDescription clock;
    DeliveryDescription delivery;
    StreamChannelDescription stream;
    std::vector<FrameFault> faults;
    std::vector<Fault> callFaults; ///< set when the bus is loaded; of calls to this camera
};

struct BusDescription {
    std::vector<CameraDescription> cameras;
};

} // namespace fcsim

#endif
