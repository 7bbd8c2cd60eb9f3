// What stands behind one camera object of the SDK: its connection to a camera on the bus.
#ifndef FCSIM_CAMERA_SESSION_H
#define FCSIM_CAMERA_SESSION_H

#include "camera/device.h"
#include "sdk/call_gate.h"

#include <FlyCapture2.h>

#include <atomic>
#include <mutex>

namespace fcsim {

/// Connection of one `Camera` or `GigECamera`. Calls may come from several threads at once.
class CameraSession : public CallTarget {
public:
    /// `object` is the class's name; `gigEOnly`: other cameras are refused.
    CameraSession(const char* object, bool gigEOnly) : object_(object), gigEOnly_(gigEOnly) {}
    ~CameraSession() override { disconnect(); }

    const char* object() const { return object_; }
    unsigned serialNumber() const override;
    void passRegisterTime() override;
    void detachCamera(std::uint64_t backAfterUs) override;

    /// Null stands for the first camera on the bus.
    FlyCapture2::Error connect(const FlyCapture2::PGRGuid* guid);
    FlyCapture2::Error disconnect();
    bool connected() const;
    FlyCapture2::Error start();
    FlyCapture2::Error retrieve(FlyCapture2::Image& image);

    /// Calls `work` with the connected camera, its mutex held; fails when there is none.
    template <class Work>
    FlyCapture2::Error onDevice(const Work& work)
    {
        Device* device = connectedDevice();
        if (device == nullptr || !device->attached()) {
            return notConnected();
        }
        const std::lock_guard lock(device->mutex());
        return work(*device);
    }

    /// Lets the camera work out what has happened until now.
    void catchUp();

private:
    /// The camera that this session owns, also when it has left the bus meanwhile.
    Device* connectedDevice() const;
    static FlyCapture2::Error notConnected();

    const char* object_;
    bool gigEOnly_;
    std::atomic<Device*> device_{nullptr};
};

} // namespace fcsim

#endif
