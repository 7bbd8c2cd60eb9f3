// A camera whose frames arrive by a script, and that remembers what it was told.
#include "scripted_camera.h"

#include "control/sim_control.h"

#include <stdexcept>

#include <dlfcn.h>

using FlyCapture2::Error;

namespace kxtest {

namespace {

constexpr unsigned kClockRegister = 0x1EA8;
/// No test retrieves more: a grab that does not end is ended.
constexpr unsigned kMostRetrievals = 50'000;

/// The time stamp that images show instead of their own.
std::optional<FlyCapture2::TimeStamp> scriptedTimeStamp;

} // namespace

void scriptTimeStamp(std::optional<FlyCapture2::TimeStamp> stamp)
{
    scriptedTimeStamp = stamp;
}

FlyCapture2::TimeStamp cycleTimeStamp(std::uint64_t us)
{
    FlyCapture2::TimeStamp stamp;
    stamp.cycleSeconds = static_cast<unsigned>(us / 1'000'000);
    stamp.cycleCount = static_cast<unsigned>(us % 1'000'000 / 125);
    const auto part = static_cast<unsigned>((us % 125 * 256 + 124) / 125);
    stamp.cycleOffset = part << 4U;
    return stamp;
}

std::uint32_t packedCycleTime(std::uint64_t us)
{
    const FlyCapture2::TimeStamp stamp = cycleTimeStamp(us);
    return (stamp.cycleSeconds << 25U) | (stamp.cycleCount << 12U) | stamp.cycleOffset;
}

ScriptedCamera::~ScriptedCamera()
{
    scriptedTimeStamp.reset();
}

void ScriptedCamera::connect(unsigned serial)
{
    FlyCapture2::BusManager bus;
    FlyCapture2::PGRGuid guid;
    if (bus.GetCameraFromSerialNumber(serial, &guid) != FlyCapture2::PGRERROR_OK ||
        Connect(&guid) != FlyCapture2::PGRERROR_OK) {
        throw std::runtime_error("no camera to connect to");
    }
}

Error ScriptedCamera::RetrieveBuffer(FlyCapture2::Image* image)
{
    if (++retrievals_ > kMostRetrievals) {
        throw std::runtime_error("the grab does not end");
    }
    if (onRetrieve) {
        onRetrieve(retrievals_);
    }
    scriptedTimeStamp = timeStamp;
    return frames ? retrieveScripted(image) : CExCam::RetrieveBuffer(image);
}

Error ScriptedCamera::retrieveScripted(FlyCapture2::Image* image)
{
    if (retrievals_ > frames->size() || (*frames)[retrievals_ - 1].fails) {
        // The simulation's own answer to an image that cannot be filled.
        return CExCam::RetrieveBuffer(nullptr);
    }
    const ScriptedFrame& frame = (*frames)[retrievals_ - 1];
    const std::uint64_t arrivalUs = captureStartUs_ + frame.arrivalUs;
    if (arrivalUs > fcsim::nowUs()) {
        fcsim::advanceClock(arrivalUs - fcsim::nowUs());
    }
    if (!timeStamp) {
        scriptedTimeStamp = cycleTimeStamp(frame.cameraUs);
    }
    *image = FlyCapture2::Image(8, 8, 8, pixels_.data(), 64, FlyCapture2::PIXEL_FORMAT_MONO8);
    return {};
}

Error ScriptedCamera::StartCapture(FlyCapture2::ImageEventCallback callback, const void* data)
{
    captureStartUs_ = fcsim::nowUs();
    retrievals_ = 0;
    return CExCam::StartCapture(callback, data);
}

Error ScriptedCamera::ReadRegister(unsigned int address, unsigned int* value)
{
    const Error error = CExCam::ReadRegister(address, value);
    if (address == kClockRegister && clockRegister && error == FlyCapture2::PGRERROR_OK) {
        *value = *clockRegister;
    }
    const auto scripted = registers.find(address);
    if (scripted != registers.end() && error == FlyCapture2::PGRERROR_OK) {
        *value = scripted->second;
    }
    return error;
}

Error ScriptedCamera::WriteRegister(unsigned int address, unsigned int value, bool broadcast)
{
    if (onWriteRegister) {
        onWriteRegister(address, value);
    }
    return CExCam::WriteRegister(address, value, broadcast);
}

Error ScriptedCamera::GetPropertyInfo(FlyCapture2::PropertyInfo* info)
{
    const Error error = CExCam::GetPropertyInfo(info);
    if (onGetPropertyInfo) {
        onGetPropertyInfo(*info);
    }
    return error;
}

Error ScriptedCamera::GetProperty(FlyCapture2::Property* property)
{
    const Error error = CExCam::GetProperty(property);
    const auto scripted = absValues.find(property->type);
    if (scripted != absValues.end()) {
        property->absValue = scripted->second;
    }
    if (onGetProperty) {
        onGetProperty(*property);
    }
    return error;
}

Error ScriptedCamera::SetProperty(const FlyCapture2::Property* property, bool broadcast)
{
    written.push_back(*property);
    return CExCam::SetProperty(property, broadcast);
}

Error ScriptedCamera::SetConfiguration(const FlyCapture2::FC2Config* config)
{
    configurations.push_back(*config);
    return CExCam::SetConfiguration(config);
}

Error ScriptedCamera::SetUserBuffers(unsigned char* const memory, int size, int count)
{
    userBuffers.push_back(memory);
    return CExCam::SetUserBuffers(memory, size, count);
}

Error ScriptedCamera::SetLUTChannel(unsigned int bank, unsigned int channel, unsigned int count,
                                    const unsigned int* entries)
{
    luts.push_back({bank, channel, {entries, entries + count}});
    return CExCam::SetLUTChannel(bank, channel, count, entries);
}

Error ScriptedCamera::SetEmbeddedImageInfo(FlyCapture2::EmbeddedImageInfo* info)
{
    embedded.push_back(*info);
    return CExCam::SetEmbeddedImageInfo(info);
}

Error ScriptedCamera::SetFormat7Configuration(const FlyCapture2::Format7ImageSettings* settings,
                                              unsigned int packetSize)
{
    format7.push_back(*settings);
    packetSizes.push_back(packetSize);
    return CExCam::SetFormat7Configuration(settings, packetSize);
}

} // namespace kxtest

// The simulation's images find this before their own: it is part of the executable.
FlyCapture2::TimeStamp FlyCapture2::Image::GetTimeStamp() const
{
    if (kxtest::scriptedTimeStamp) {
        return *kxtest::scriptedTimeStamp;
    }
    using Original = TimeStamp (*)(const Image*);
    static const auto original =
        reinterpret_cast<Original>(dlsym(RTLD_NEXT, "_ZNK11FlyCapture25Image12GetTimeStampEv"));
    return original(this);
}
