// Fuzz target: descriptions of the simulated bus. Each that is accepted is one of cameras that
// work.
#include "control/sim_control.h"
#include "description/bus_parser.h"
#include "fuzz_input.h"

#include <FlyCapture2.h>

#include <set>
#include <stdexcept>
#include <string>

namespace kxfuzz {
namespace {

constexpr const char* kFile = "fuzz.toml";
/// Larger pictures only take longer.
constexpr std::uint64_t kMostPixels = 4096;
constexpr std::uint64_t kStartUs = 1'700'000'000'000'000;

void checkProblem(const fcsim::ParsedBus& parsed)
{
    KX_MUST(parsed.bus.cameras.empty());
    const std::string head = std::string(kFile) + ":";
    KX_MUST(parsed.problem.starts_with(head));
    KX_MUST(std::strtoul(parsed.problem.c_str() + head.size(), nullptr, 10) >= 1);
    KX_MUST(parsed.problem.find('\n') == std::string::npos);
}

bool onGrid(unsigned value, unsigned step)
{
    return step == 0 || value % step == 0;
}

void checkFormat7(const fcsim::CameraDescription& camera)
{
    const fcsim::Format7Description& format7 = camera.format7;
    KX_MUST(format7.maxWidth >= 1 && format7.maxWidth <= camera.sensor.width);
    KX_MUST(format7.maxHeight >= 1 && format7.maxHeight <= camera.sensor.height);
    KX_MUST(onGrid(format7.maxWidth, format7.sizeHStep));
    KX_MUST(onGrid(format7.maxHeight, format7.sizeVStep));
    KX_MUST(format7.packetMin <= format7.packetRecommended);
    KX_MUST(format7.packetRecommended <= format7.packetMax);
    KX_MUST(onGrid(format7.packetRecommended, format7.packetUnit));
    KX_MUST(!format7.pixelFormats.empty());
}

void checkProperties(const fcsim::CameraDescription& camera)
{
    for (const fcsim::PropertyDescription& property : camera.properties) {
        if (!property.present) {
            continue;
        }
        KX_MUST(property.rawMin <= property.rawMax && property.absMin <= property.absMax);
        const bool inside = property.value >= property.absMin && property.value <= property.absMax;
        KX_MUST(inside || !property.absSupported);
        const auto isRaw = [&property](unsigned value) {
            return value >= property.rawMin && value <= property.rawMax;
        };
        KX_MUST(property.absSupported || isRaw(property.rawA));
    }
}

void checkCamera(const fcsim::CameraDescription& camera)
{
    KX_MUST(camera.serial != 0);
    KX_MUST((camera.sensor.tile != FlyCapture2::NONE) == camera.sensor.colour);
    checkFormat7(camera);
    checkProperties(camera);
    for (const fcsim::IoBoxDescription& box : camera.ioBoxes) {
        KX_MUST(box.listensOn < camera.gpioPins);
        KX_MUST(!box.answersOn ||
                (*box.answersOn < camera.gpioPins && box.answersOn != box.listensOn));
    }
}

/// Whether trying it is cheap and writes no file.
bool isSmall(const fcsim::CameraDescription& camera)
{
    bool writes = false;
    for (const fcsim::IoBoxDescription& box : camera.ioBoxes) {
        writes = writes || !box.log.empty();
    }
    return !writes && std::uint64_t{camera.sensor.width} * camera.sensor.height <= kMostPixels;
}

void readEverything(FlyCapture2::Camera& camera)
{
    for (unsigned type = 0; type < fcsim::kPropertyCount; ++type) {
        FlyCapture2::PropertyInfo info(static_cast<FlyCapture2::PropertyType>(type));
        FlyCapture2::Property property(static_cast<FlyCapture2::PropertyType>(type));
        static_cast<void>(camera.GetPropertyInfo(&info));
        static_cast<void>(camera.GetProperty(&property));
        property.absControl = info.absValSupported;
        static_cast<void>(camera.SetProperty(&property));
    }
    for (const unsigned address : {0x400U, 0x610U, 0x1040U, 0x1EA8U}) {
        unsigned value = 0;
        static_cast<void>(camera.ReadRegister(address, &value));
    }
    FlyCapture2::CameraStats stats;
    static_cast<void>(camera.GetStats(&stats));
}

/// A few frames, with the buffers and the time-out that the plug-in would take.
void grab(FlyCapture2::Camera& camera)
{
    FlyCapture2::FC2Config config;
    config.numBuffers = 3;
    config.grabTimeout = 2000;
    static_cast<void>(camera.SetConfiguration(&config));
    if (camera.StartCapture() != FlyCapture2::PGRERROR_OK) {
        return;
    }
    std::uint64_t lastUs = 0;
    for (int frame = 0; frame < 4; ++frame) {
        FlyCapture2::Image image;
        if (camera.RetrieveBuffer(&image) == FlyCapture2::PGRERROR_OK) {
            KX_MUST(image.GetData() != nullptr);
            KX_MUST(image.GetDataSize() >= image.GetRows() * image.GetStride());
        }
        KX_MUST(fcsim::nowUs() >= lastUs);
        lastUs = fcsim::nowUs();
    }
    static_cast<void>(camera.StopCapture());
}

void use(const fcsim::CameraDescription& description)
{
    FlyCapture2::BusManager bus;
    FlyCapture2::PGRGuid guid;
    FlyCapture2::Camera camera;
    static_cast<void>(bus.GetCameraFromSerialNumber(description.serial, &guid));
    if (camera.Connect(&guid) != FlyCapture2::PGRERROR_OK) {
        KX_MUST(!description.callFaults.empty());
        return;
    }
    readEverything(camera);
    grab(camera);
    static_cast<void>(camera.Disconnect());
}

void busDescription(Input input)
{
    const std::string_view text = textOf(input);
    const fcsim::ParsedBus parsed = fcsim::parseBus(text, kFile);
    if (!parsed.problem.empty()) {
        checkProblem(parsed);
        return;
    }
    std::set<unsigned> serials;
    bool small = true;
    for (const fcsim::CameraDescription& camera : parsed.bus.cameras) {
        checkCamera(camera);
        KX_MUST(serials.insert(camera.serial).second);
        small = small && isSmall(camera);
    }
    if (!small) {
        return;
    }
    fcsim::clearFaults();
    fcsim::useManualClock(kStartUs);
    KX_MUST(fcsim::loadBus(text, kFile).empty());
    for (const fcsim::CameraDescription& camera : parsed.bus.cameras) {
        try {
            use(camera);
        } catch (const std::runtime_error&) {
            // As the description says: of a call that fails, or of a camera that is gone.
            KX_MUST(!camera.callFaults.empty() || !camera.detachException.empty());
        }
    }
}

} // namespace
} // namespace kxfuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    kxfuzz::busDescription({data, size});
    return 0;
}
