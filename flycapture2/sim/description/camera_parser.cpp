// Reads the description of one camera.
#include "description/camera_parser.h"

#include "camera/device_info.h"
#include "description/camera_defaults.h"
#include "description/fault_parser.h"
#include "description/io_box_parser.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace fcsim {

namespace {

using namespace FlyCapture2;

template <class Value>
using Choices = std::initializer_list<std::pair<const char*, Value>>;

const Choices<InterfaceType> kInterfaces{{"usb2", INTERFACE_USB2},
                                         {"usb3", INTERFACE_USB3},
                                         {"gige", INTERFACE_GIGE},
                                         {"ieee1394", INTERFACE_IEEE1394},
                                         {"unknown", INTERFACE_UNKNOWN}};
const Choices<BayerTileFormat> kTiles{
    {"none", NONE}, {"RGGB", RGGB}, {"GRBG", GRBG}, {"GBRG", GBRG}, {"BGGR", BGGR}};
const Choices<PowerUp> kPowerUps{{"on", PowerUp::on},
                                 {"delayed", PowerUp::delayed},
                                 {"never", PowerUp::never},
                                 {"timeout", PowerUp::timeout}};
const Choices<SceneKind> kScenes{
    {"chart", SceneKind::chart}, {"pictures", SceneKind::pictures}, {"none", SceneKind::none}};
/// What cameras send; BGR and BGRU are made by the library.
constexpr std::array kCameraFormats{
    PIXEL_FORMAT_MONO8,   PIXEL_FORMAT_MONO12, PIXEL_FORMAT_MONO16,  PIXEL_FORMAT_RAW8,
    PIXEL_FORMAT_RAW12,   PIXEL_FORMAT_RAW16,  PIXEL_FORMAT_411YUV8, PIXEL_FORMAT_422YUV8,
    PIXEL_FORMAT_444YUV8, PIXEL_FORMAT_RGB8};

constexpr std::uint64_t kMaxSize = 16384;
constexpr std::uint64_t kMax32 = 0xFFFFFFFF;
constexpr double kHourUs = 3.6e9;
constexpr double kDaySeconds = 86400;

/// Calls `read` with the sub-table `key` if it is there, and checks that it has no other keys.
template <class Read>
void section(TableReader& table, const char* key, const Read& read)
{
    if (std::optional<TableReader> found = table.table(key)) {
        read(*found);
        found->finish();
    }
}

void readSensor(TableReader& table, CameraDescription& camera)
{
    SensorSettings& sensor = camera.sensor;
    table.text("info", camera.sensorInfo);
    table.text("resolution", camera.sensorResolution);
    table.require("width");
    table.require("height");
    table.integer("width", sensor.width, 16, kMaxSize);
    table.integer("height", sensor.height, 16, kMaxSize);
    table.integer("bit_depth", sensor.bitDepth, 8, 12);
    table.number("full_well", sensor.fullWell, 100, 1e9);
    table.flag("noise", sensor.noise);
    table.number("read_noise", sensor.readNoise, 0, 1e6);
    table.integer("noise_seed", sensor.noiseSeed, 0, INT64_MAX);
    table.flag("colour", sensor.colour);
    sensor.tile = sensor.colour ? RGGB : NONE;
    table.choice("bayer_tile", sensor.tile, kTiles);
    if ((sensor.tile != NONE) != sensor.colour) {
        table.fail("bayer_tile", "a sensor has a tile when, and only when, colour = true");
    }
    if (table.has("bayer_register")) {
        unsigned value = 0;
        table.integer("bayer_register", value, 0, kMax32);
        camera.registers[0x1040] = value;
    }
    table.number("frame_rate", camera.frameRate, 0.1, 100000);
}

void readFormat7(TableReader& table, CameraDescription& camera)
{
    Format7Description& format7 = camera.format7;
    table.flag("supported", format7.supported);
    table.integer("max_width", format7.maxWidth, 1, camera.sensor.width);
    table.integer("max_height", format7.maxHeight, 1, camera.sensor.height);
    table.pair("offset_steps", format7.offsetHStep, format7.offsetVStep, kMaxSize);
    table.pair("size_steps", format7.sizeHStep, format7.sizeVStep, kMaxSize);
    section(table, "packet_size", [&](TableReader& packet) {
        packet.integer("recommended", format7.packetRecommended, 1, kMax32);
        packet.integer("min", format7.packetMin, 1, kMax32);
        packet.integer("max", format7.packetMax, 1, kMax32);
        packet.integer("unit", format7.packetUnit, 1, kMax32);
    });
    if (table.has("pixel_formats")) {
        format7.pixelFormats.clear();
        table.words("pixel_formats", [&](const std::string& word) {
            const auto* const format =
                std::find_if(kCameraFormats.begin(), kCameraFormats.end(),
                             [&](PixelFormat known) { return word == pixelFormatName(known); });
            if (format == kCameraFormats.end()) {
                return false;
            }
            format7.pixelFormats.push_back(*format);
            return true;
        });
        if (format7.pixelFormats.empty()) {
            table.fail("pixel_formats", "a camera needs at least one pixel format");
        }
    }
}

void checkFormat7(TableReader& table, const CameraDescription& camera)
{
    const Format7Description& format7 = camera.format7;
    const auto off = [](unsigned size, unsigned step) { return step > 0 && size % step != 0; };
    if (off(format7.maxWidth, format7.sizeHStep) || off(format7.maxHeight, format7.sizeVStep)) {
        table.fail("format7", "the largest region, " + std::to_string(format7.maxWidth) + " x " +
                                  std::to_string(format7.maxHeight) +
                                  ", is no multiple of size_steps");
    }
    const unsigned recommended = format7.packetRecommended;
    if (recommended < format7.packetMin || recommended > format7.packetMax ||
        off(recommended, format7.packetUnit)) {
        table.fail("format7", "packet_size.recommended " + std::to_string(recommended) +
                                  " is not within " + std::to_string(format7.packetMin) + " to " +
                                  std::to_string(format7.packetMax) + " in steps of " +
                                  std::to_string(format7.packetUnit));
    }
}

void readEmbedded(TableReader& table, CameraDescription& camera)
{
    if (!table.has("embedded")) {
        return;
    }
    camera.embedded.fill(false);
    table.words("embedded", [&](const std::string& word) {
        for (unsigned i = 0; i < kEmbeddedCount; ++i) {
            if (word == kEmbeddedNames[i]) {
                camera.embedded[i] = true;
                return true;
            }
        }
        return false;
    });
}

void readLut(TableReader& table, LutDescription& lut)
{
    table.flag("supported", lut.supported);
    table.integer("banks", lut.banks, 1, 32);
    table.integer("channels", lut.channels, 1, 8);
    table.integer("entries", lut.entries, 1, 65536);
    table.integer("input_bits", lut.inputBits, 1, 16);
    table.integer("output_bits", lut.outputBits, 1, 16);
}

void readTimes(TableReader& table, CameraDescription& camera)
{
    section(table, "power", [&](TableReader& power) {
        power.choice("behaviour", camera.power.behaviour, kPowerUps);
        power.integer("reads", camera.power.reads, 0, 1000000);
    });
    section(table, "clock", [&](TableReader& clock) {
        clock.number("offset_us", camera.clock.offsetUs, 0, 128e6);
        clock.number("drift_ppm", camera.clock.driftPpm, -100000, 100000);
        clock.number("wander_ppm", camera.clock.wanderPpm, 0, 1000);
        clock.number("wander_seconds", camera.clock.wanderSeconds, 1, kDaySeconds);
        clock.integer("wrap_seconds", camera.clock.wrapSeconds, 1, 128);
    });
    section(table, "delivery", [&](TableReader& delivery) {
        delivery.number("latency_us", camera.delivery.latencyUs, 0, kHourUs);
        delivery.number("jitter_us", camera.delivery.jitterUs, 0, kHourUs);
        delivery.number("spike_share", camera.delivery.spikeShare, 0, 1);
        delivery.number("spike_us", camera.delivery.spikeUs, 0, kHourUs);
        delivery.integer("seed", camera.delivery.seed, 0, INT64_MAX);
        delivery.number("bandwidth", camera.delivery.bandwidth, 1000, 1e12);
        delivery.flag("paced", camera.delivery.paced);
    });
}

void readStream(TableReader& table, StreamChannelDescription& stream)
{
    table.integer("channels", stream.count, 0, 16);
    table.integer("packet_size", stream.packetSize, 1, 65535);
    table.integer("packet_delay", stream.packetDelay, 0, kMax32);
    table.flag("do_not_fragment", stream.doNotFragment);
}

void readRegisters(TableReader& table, CameraDescription& camera)
{
    for (const std::string& key : table.allKeys()) {
        char* end = nullptr;
        const unsigned long address = std::strtoul(key.c_str(), &end, 0);
        if (key.empty() || *end != '\0' || address > kMax32 || address % 4 != 0) {
            table.fail(key, "must be an address that is a multiple of 4, like \"0x1098\"");
        }
        unsigned value = 0;
        table.integer(key, value, 0, kMax32);
        camera.registers[static_cast<std::uint32_t>(address)] = value;
    }
}

void readScene(TableReader& table, CameraDescription& camera, const std::filesystem::path& folder)
{
    table.choice("kind", camera.scene.kind, kScenes);
    std::string path;
    table.text("path", path);
    table.number("brightness", camera.scene.brightness, 1e-6, 1e6);
    table.number("reference_exposure_us", camera.scene.referenceExposureUs, 1, kHourUs);
    if (!path.empty()) {
        camera.scene.path = folder / path;
    }
    try {
        const Renderer trial(camera.scene, camera.sensor);
    } catch (const SceneError& error) {
        table.fail(camera.scene.kind == SceneKind::pictures ? "path" : "kind", error.what());
    }
}

void readIoBoxes(TableReader& table, CameraDescription& camera)
{
    for (TableReader& found : table.tables("io_box")) {
        const IoBoxDescription box = readIoBox(found, camera.gpioPins);
        for (const IoBoxDescription& other : camera.ioBoxes) {
            if (box.answersOn && box.answersOn == other.answersOn) {
                found.fail("answers_on", "another box answers on pin " +
                                             std::to_string(*box.answersOn) + " already");
            }
        }
        camera.ioBoxes.push_back(box);
    }
}

void readIdentity(TableReader& table, CameraDescription& camera)
{
    for (const char* key : {"model", "serial", "interface", "sensor"}) {
        table.require(key);
    }
    table.text("model", camera.model);
    table.text("vendor", camera.vendor);
    table.text("firmware", camera.firmware);
    table.integer("serial", camera.serial, 1, kMax32);
    table.choice("interface", camera.interface, kInterfaces);
    table.number("temperature", camera.temperatureC, -273.15, 1000);
    table.number("register_time_us", camera.registerUs, 0, kHourUs);
    table.integer("gpio_pins", camera.gpioPins, 0, 4);
    table.text("detach_throws", camera.detachException);
}

} // namespace

CameraDescription readCamera(TableReader& table, const std::filesystem::path& folder)
{
    CameraDescription camera;
    readIdentity(table, camera);
    section(table, "sensor", [&](TableReader& found) { readSensor(found, camera); });
    setSensorDefaults(camera);
    section(table, "format7", [&](TableReader& found) { readFormat7(found, camera); });
    section(table, "properties", [&](TableReader& found) { readProperties(found, camera); });
    section(table, "lut", [&](TableReader& found) { readLut(found, camera.lut); });
    readEmbedded(table, camera);
    readTimes(table, camera);
    section(table, "stream", [&](TableReader& found) { readStream(found, camera.stream); });
    if (std::optional<TableReader> found = table.table("registers")) {
        readRegisters(*found, camera);
    }
    completeDescription(camera);
    checkFormat7(table, camera);
    section(table, "scene", [&](TableReader& found) { readScene(found, camera, folder); });
    readIoBoxes(table, camera);
    readFaults(table, camera);
    table.finish();
    return camera;
}

} // namespace fcsim
