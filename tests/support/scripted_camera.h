// A camera whose frames arrive by a script, and that remembers what it was told.
#ifndef KX_TEST_SCRIPTED_CAMERA_H
#define KX_TEST_SCRIPTED_CAMERA_H

#include "kx_pg_excam.h"

#include <FlyCapture2.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace kxtest {

/// One retrieval.
struct ScriptedFrame {
    std::uint64_t arrivalUs = 0; ///< host clock, since the start of capture
    std::uint64_t cameraUs = 0;  ///< start of exposure on the camera's clock
    bool fails = false;
};

/// The camera's time of `us` microseconds, as it reads when decoded; packed as in the clock
/// register.
FlyCapture2::TimeStamp cycleTimeStamp(std::uint64_t us);
std::uint32_t packedCycleTime(std::uint64_t us);

/// A look-up table's channel that was written.
struct LutWrite {
    unsigned bank = 0;
    unsigned channel = 0;
    std::vector<unsigned> entries;
};

/// From now on images show this time stamp; nothing = their own.
void scriptTimeStamp(std::optional<FlyCapture2::TimeStamp> stamp);

/// A camera of the plug-in's, connected to a simulated one. Whatever is not scripted is that
/// camera's.
class ScriptedCamera : public KxPGrey::CExCam {
public:
    ScriptedCamera() = default;
    ~ScriptedCamera() override;

    /// Connects the camera with this serial number.
    void connect(unsigned serial);

    // ---- What is scripted.

    /// The retrievals; not set: the simulated camera's frames. After the last one they fail.
    std::optional<std::vector<ScriptedFrame>> frames;
    /// Called at the begin of each retrieval with its number, 1 based.
    std::function<void(unsigned)> onRetrieve;
    /// What the clock register reads; not set: the simulated camera's.
    std::optional<std::uint32_t> clockRegister;
    /// What other registers read, by address; without one the simulated camera's. Changed while
    /// nothing reads only.
    std::map<unsigned int, std::uint32_t> registers;
    /// Time stamp of each image; not set: from the script, else the simulated camera's.
    std::optional<FlyCapture2::TimeStamp> timeStamp;
    /// Absolute values of properties.
    std::map<FlyCapture2::PropertyType, float> absValues;
    /// Called with each property that was asked for or read: changes it on its way.
    std::function<void(FlyCapture2::PropertyInfo&)> onGetPropertyInfo;
    std::function<void(FlyCapture2::Property&)> onGetProperty;
    /// Called with each register write before it is made.
    std::function<void(unsigned address, unsigned value)> onWriteRegister;

    // ---- What the camera was told.

    std::vector<FlyCapture2::Property> written;
    std::vector<FlyCapture2::FC2Config> configurations;
    std::vector<FlyCapture2::Format7ImageSettings> format7;
    std::vector<unsigned> packetSizes;
    std::vector<FlyCapture2::EmbeddedImageInfo> embedded;
    std::vector<const void*> userBuffers;
    std::vector<LutWrite> luts;

    FlyCapture2::Error RetrieveBuffer(FlyCapture2::Image* image) override;
    FlyCapture2::Error StartCapture(FlyCapture2::ImageEventCallback callback,
                                    const void* data) override;
    FlyCapture2::Error ReadRegister(unsigned int address, unsigned int* value) override;
    FlyCapture2::Error WriteRegister(unsigned int address, unsigned int value,
                                     bool broadcast) override;
    FlyCapture2::Error GetPropertyInfo(FlyCapture2::PropertyInfo* info) override;
    FlyCapture2::Error GetProperty(FlyCapture2::Property* property) override;
    FlyCapture2::Error SetProperty(const FlyCapture2::Property* property, bool broadcast) override;
    FlyCapture2::Error SetConfiguration(const FlyCapture2::FC2Config* config) override;
    FlyCapture2::Error SetUserBuffers(unsigned char* const memory, int size, int count) override;
    FlyCapture2::Error SetLUTChannel(unsigned int bank, unsigned int channel, unsigned int count,
                                     const unsigned int* entries) override;
    FlyCapture2::Error SetEmbeddedImageInfo(FlyCapture2::EmbeddedImageInfo* info) override;
    FlyCapture2::Error SetFormat7Configuration(const FlyCapture2::Format7ImageSettings* settings,
                                               unsigned int packetSize) override;
    using Camera::SetFormat7Configuration;

private:
    FlyCapture2::Error retrieveScripted(FlyCapture2::Image* image);

    std::uint64_t captureStartUs_ = 0;
    unsigned retrievals_ = 0;
    std::vector<unsigned char> pixels_ = std::vector<unsigned char>(64);
};

} // namespace kxtest

#endif
