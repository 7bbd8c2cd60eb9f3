// Fuzz target: what a host says of pixel format, region, buffers and conversion, in whole grabs of
// the plug-in from a simulated camera.
#include "control/sim_control.h"
#include "fuzz_input.h"
#include "journal.h"
#include "kx_log.h"
#include "kx_pg_proc.h"
#include "recording_host.h"
#include "test_bus.h"

#include <FlyCapture2.h>

#include <cstdarg>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>

#include <sys/time.h>

// The plug-in's time is the simulation's; what it logs is formatted and dropped.
extern "C" {

int gettimeofday(struct timeval* __restrict time, void* __restrict /*zone*/) noexcept
{
    const std::uint64_t now = fcsim::nowUs();
    time->tv_sec = static_cast<time_t>(now / 1'000'000);
    time->tv_usec = static_cast<suseconds_t>(now % 1'000'000);
    return 0;
}

void syslog(int /*priority*/, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    char text[2048];
    KX_MUST(std::vsnprintf(text, sizeof(text), format, arguments) >= 0);
    va_end(arguments);
}
}

namespace kxfuzz {
namespace {

using FlyCapture2::Format7ImageSettings;
using FlyCapture2::Format7Info;
using kxtest::host;
using kxtest::HostConfig;

constexpr unsigned kSerial = 1000;
constexpr std::uint64_t kStartUs = 1'700'000'000'000'000;
constexpr float kUsualFps = 30;
constexpr unsigned kMostPolls = 12; ///< of signals, then the grab is finished

constexpr std::array<const char*, 5> kSensors = {
    "width = 64, height = 48, colour = false, noise = false",
    "width = 64, height = 48, colour = true, noise = false, bayer_tile = \"GBRG\"",
    "width = 60, height = 44, colour = true, noise = false",
    "width = 17, height = 19, colour = false, noise = false",
    "width = 50, height = 30, colour = true, noise = false, bayer_register = 7",
};
constexpr std::array<const char*, 6> kFormats = {
    "",
    "pixel_formats = [\"MONO8\"]",
    "pixel_formats = [\"RAW8\", \"RAW12\"]",
    "pixel_formats = [\"MONO16\", \"MONO8\"]",
    "pixel_formats = [\"411YUV8\", \"422YUV8\", \"MONO12\"]",
    "pixel_formats = [\"RGB8\", \"444YUV8\"]",
};
constexpr std::array<const char*, 4> kSteps = {
    "size_steps = [1, 1], offset_steps = [1, 1]",
    "size_steps = [0, 0], offset_steps = [0, 0]",
    "max_width = 16, max_height = 12, size_steps = [4, 3], offset_steps = [2, 6]",
    "max_width = 17, max_height = 8, size_steps = [1, 8], offset_steps = [0, 5]",
};
constexpr std::array<const char*, 4> kInterfaces = {"usb2", "usb3", "gige", "ieee1394"};

template <std::size_t Count>
const char* one(Bytes& bytes, const std::array<const char*, Count>& choices)
{
    return choices[bytes.within<std::size_t>(0, Count - 1)];
}

kxtest::CameraText drawCamera(Bytes& bytes)
{
    kxtest::CameraText camera;
    camera.serial = kSerial;
    camera.interface = one(bytes, kInterfaces);
    camera.sensor = one(bytes, kSensors);
    const std::string formats = one(bytes, kFormats);
    camera.extra = std::string("format7 = { ") + one(bytes, kSteps) +
                   (formats.empty() ? "" : ", ") + formats + " }\n";
    return camera;
}

/// Usable numbers often, and any.
std::uint32_t drawSize(Bytes& bytes)
{
    switch (bytes.within(0U, 3U)) {
    case 0:
        return kxtest::kKeep;
    case 1:
        return bytes.take<std::uint32_t>();
    default:
        return bytes.take<std::uint8_t>();
    }
}

HostConfig drawConfig(Bytes& bytes)
{
    HostConfig config;
    config.format = bytes.take<std::uint8_t>();
    config.cformat = bytes.flag() ? bytes.take<std::uint8_t>() : std::uint8_t{0};
    config.width = drawSize(bytes);
    config.height = drawSize(bytes);
    config.offsetX = drawSize(bytes);
    config.offsetY = drawSize(bytes);
    config.rotate = bytes.within(0U, 3U) == 3 ? bytes.take<std::int32_t>() : 0;
    config.bnum = bytes.within(0U, 6U);
    config.fnum = bytes.within(1U, 4U);
    config.fps = bytes.flag() ? bytes.take<float>() : kUsualFps;
    return config;
}

// ---- What the region must come to, worked out from the rules by themselves.

bool isTaken(std::uint32_t asked, std::int64_t min, std::int64_t max, std::uint32_t step)
{
    const auto value = std::int64_t{static_cast<std::int32_t>(asked)};
    return asked != kxtest::kKeep && value >= min && value <= max &&
           (step == 0 || asked % step == 0);
}

Format7ImageSettings expectedRegion(const Format7Info& info, Format7ImageSettings settings)
{
    const HostConfig& config = host().config;
    const auto take = [](unsigned& setting, std::uint32_t asked, unsigned min, unsigned max,
                         unsigned step) {
        if (isTaken(asked, min, std::int64_t{static_cast<std::int32_t>(max)}, step)) {
            setting = asked;
        }
    };
    take(settings.offsetX, config.offsetX, 0, info.maxWidth - info.imageHStepSize,
         info.offsetHStepSize);
    take(settings.offsetY, config.offsetY, 0, info.maxHeight - info.imageVStepSize,
         info.offsetVStepSize);
    take(settings.width, config.width, info.imageHStepSize, info.maxWidth, info.imageHStepSize);
    take(settings.height, config.height, info.imageVStepSize, info.maxHeight, info.imageVStepSize);
    return settings;
}

/// The region in force; nothing when the camera does not tell.
std::optional<Format7ImageSettings> regionOf(KxPGrey::CExCam& camera)
{
    Format7ImageSettings settings;
    unsigned packet = 0;
    float percentage = 0;
    const bool known =
        camera.GetFormat7Configuration(&settings, &packet, &percentage) == FlyCapture2::PGRERROR_OK;
    return known ? std::optional(settings) : std::nullopt;
}

bool sameRegion(const Format7ImageSettings& one, const Format7ImageSettings& other)
{
    return one.width == other.width && one.height == other.height && one.offsetX == other.offsetX &&
           one.offsetY == other.offsetY;
}

// ---- A grab.

void prepareHost(Bytes& bytes)
{
    host().reset();
    host().config = drawConfig(bytes);
    host().factoryUsed = bytes.flag();
    // One slot tells nothing of its size; the plug-in has to believe that it is large enough.
    const bool odd = bytes.within(0U, 3U) == 3 && host().config.bnum != 1;
    host().slotStep = odd ? bytes.take<std::uint16_t>() : 0;
    host().checkSignal = [polls = 0U]() mutable { return ++polls > kMostPolls ? 1 : 0; };
}

void checkFrames(const KxPGrey::CCamProc& proc, const Format7ImageSettings& region, int code)
{
    KX_MUST(proc.roiWidth == region.width && proc.roiHeight == region.height);
    KX_MUST(proc.activeFrameSize <= proc.gBufferFrameSize || proc.convEnabled);
    KX_MUST(std::uint64_t{8} * proc.stride >= std::uint64_t{proc.bitsPerPixel} * region.width);
    // The first frame sets the clock and is not exported. At some rates none comes in time.
    const std::size_t frames = host().exports.size() + 1;
    const bool usual = host().config.fps == kUsualFps;
    KX_MUST(code != 0 || frames == host().config.fnum || (!usual && frames <= host().config.fnum));
    std::uint64_t lastUs = 0;
    for (const kxtest::Export& frame : host().exports) {
        KX_MUST(frame.timestampUs > lastUs);
        lastUs = frame.timestampUs;
    }
    for (const kxtest::HandedOver& frame : host().frames) {
        KX_MUST(frame.frame != nullptr && (frame.instance == 0 || frame.instance == 1));
    }
}

void connect(KxPGrey::CExCam& camera)
{
    FlyCapture2::BusManager bus;
    FlyCapture2::PGRGuid guid;
    KX_MUST(bus.GetCameraFromSerialNumber(kSerial, &guid) == FlyCapture2::PGRERROR_OK);
    KX_MUST(camera.Connect(&guid) == FlyCapture2::PGRERROR_OK);
}

/// One session; the region of the one before is still in force.
void grabOnce(Bytes& bytes)
{
    KxPGrey::CExCam camera;
    connect(camera);
    prepareHost(bytes);
    FlyCapture2::CameraInfo info;
    KX_MUST(camera.GetCameraInfo(&info) == FlyCapture2::PGRERROR_OK);
    Format7Info limits;
    bool supported = false;
    KX_MUST(camera.GetFormat7Info(&limits, &supported) == FlyCapture2::PGRERROR_OK);
    const auto before = regionOf(camera);
    KX_MUST(before);
    const Format7ImageSettings expected = expectedRegion(limits, *before);

    KxPGrey::CCamProc proc;
    KxPGrey::CBufferFactory factory;
    const int code = proc.ProcLoop(&camera, &info, &factory);
    static const std::set<int> kCodes = {0, -1, -2, -10};
    KX_MUST(kCodes.contains(code));
    const auto after = regionOf(camera);
    KX_MUST(after);
    if (code == -2) {
        KX_MUST(host().exports.empty());
        KX_MUST(sameRegion(*after, *before) || sameRegion(*after, expected));
        return;
    }
    KX_MUST(sameRegion(*after, expected));
    KX_MUST(after->pixelFormat == proc.pixelFormat);
    checkFrames(proc, *after, code);
    static_cast<void>(camera.Disconnect());
}

void formatRegion(Input input)
{
    Bytes bytes(input);
    gKxLogLevelLib = 3;
    gKxLogModeLib = kxlog::kToSyslog;
    fcsim::clearFaults();
    fcsim::useManualClock(kStartUs);
    // A camera that cannot be is not the plug-in's matter.
    if (!fcsim::loadBus(kxtest::busText({drawCamera(bytes)}), "fuzz").empty()) {
        return;
    }
    for (int grab = 0; grab < 3 && !bytes.empty(); ++grab) {
        grabOnce(bytes);
        kxtest::journal().clear();
    }
}

} // namespace
} // namespace kxfuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    kxfuzz::formatRegion({data, size});
    return 0;
}
