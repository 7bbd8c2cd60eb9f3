// The calls that `Camera` and `GigECamera` have in common and those of each: gate, checks, camera.
#ifndef FCSIM_CAMERA_CALLS_H
#define FCSIM_CAMERA_CALLS_H

#include "base/sdk_error.h"
#include "sdk/camera_session.h"

#include <FlyCapture2.h>

#include <string>

namespace fcsim {

/// Member functions are those of the SDK with a small first letter; see there what they do.
class CameraCalls : public CameraSession {
public:
    using Error = FlyCapture2::Error;

    using CameraSession::CameraSession;

    // ---- Connection and identity.
    Error connectTo(const FlyCapture2::PGRGuid* guid);
    Error disconnectFrom();
    bool isConnected();
    Error getCameraInfo(FlyCapture2::CameraInfo* info);
    Error getStats(FlyCapture2::CameraStats* stats);
    Error resetStats();

    // ---- Capture.
    Error startCapture(FlyCapture2::ImageEventCallback callback);
    Error retrieveBuffer(FlyCapture2::Image* image);
    Error stopCapture();
    Error setUserBuffers(unsigned char* memory, int size, int count);
    Error getConfiguration(FlyCapture2::FC2Config* config);
    Error setConfiguration(const FlyCapture2::FC2Config* config);
    Error getEmbeddedImageInfo(FlyCapture2::EmbeddedImageInfo* info);
    Error setEmbeddedImageInfo(const FlyCapture2::EmbeddedImageInfo* info);

    // ---- Properties and registers.
    Error getPropertyInfo(FlyCapture2::PropertyInfo* info);
    Error getProperty(FlyCapture2::Property* property);
    /// A broadcast shows in the record of calls, but reaches only this camera.
    Error setProperty(const FlyCapture2::Property* property, bool broadcast);
    Error getTriggerModeInfo(FlyCapture2::TriggerModeInfo* info);
    Error writeRegister(unsigned address, unsigned value, bool broadcast);
    Error readRegister(unsigned address, unsigned* value);
    Error getCycleTime(FlyCapture2::TimeStamp* time);
    Error getStrobeInfo(FlyCapture2::StrobeInfo* info);
    Error getStrobe(FlyCapture2::StrobeControl* strobe);
    Error setStrobe(const FlyCapture2::StrobeControl* strobe);

    // ---- Look-up tables.
    Error getLutInfo(FlyCapture2::LUTData* data);
    Error getLutBankInfo(unsigned bank, bool* readable, bool* writable);
    Error getActiveLutBank(unsigned* bank);
    Error setActiveLutBank(unsigned bank);
    Error enableLut(bool on);
    Error getLutChannel(unsigned bank, unsigned channel, unsigned count, unsigned* entries);
    Error setLutChannel(unsigned bank, unsigned channel, unsigned count, const unsigned* entries);

    // ---- Format7 (Camera).
    Error getFormat7Info(FlyCapture2::Format7Info* info, bool* supported);
    Error validateFormat7Settings(const FlyCapture2::Format7ImageSettings* settings, bool* valid,
                                  FlyCapture2::Format7PacketInfo* packets);
    Error getFormat7Configuration(FlyCapture2::Format7ImageSettings* settings, unsigned* packetSize,
                                  float* percentage);
    Error setFormat7Configuration(const FlyCapture2::Format7ImageSettings* settings,
                                  unsigned packetSize);
    Error setFormat7Configuration(const FlyCapture2::Format7ImageSettings* settings,
                                  float percentage);

    // ---- Stream channels (GigECamera).
    Error getNumStreamChannels(unsigned* count);
    Error getStreamChannel(unsigned channel, FlyCapture2::GigEStreamChannel* info);
    Error setStreamChannel(unsigned channel, const FlyCapture2::GigEStreamChannel* info);

    /// The answer of an operation that is left out.
    Error leftOut(const char* operation);

private:
    /// Sends a call to the camera through the gate. `given`: no needed pointer is null.
    template <class Describe, class Work>
    Error camera(const char* operation, bool given, const Describe& describe, const Work& work)
    {
        return call(operation, Reach::camera, given, describe, [&] { return onDevice(work); });
    }
    /// The same for what depends on the frames until now, or concerns those from now on.
    template <class Describe, class Work>
    Error settings(const char* operation, bool given, const Describe& describe, const Work& work)
    {
        return call(operation, Reach::camera, given, describe, [&] {
            catchUp();
            return onDevice(work);
        });
    }
    /// The same for what the library answers by itself.
    template <class Describe, class Work>
    Error call(const char* operation, Reach reach, bool given, const Describe& describe,
               const Work& work)
    {
        const auto text = [&] { return given ? std::string(describe()) : std::string("null"); };
        const auto checked = [&] { return given ? Error(work()) : nullArgument(operation); };
        return throughGate({object(), operation, this, reach}, text, checked);
    }
    static Error nullArgument(const char* operation);
    template <class Size>
    Error setFormat7(const FlyCapture2::Format7ImageSettings* settings, Size size);
};

} // namespace fcsim

#endif
