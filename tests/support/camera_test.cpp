// Tests that drive a session object on one connected camera.
#include "camera_test.h"

#include <utility>

namespace kxtest {

CameraTest::CameraTest() : proc_(std::make_unique<KxPGrey::CCamProc>()) {}

CameraTest::~CameraTest()
{
    fcsim::clearFaults();
    proc_.reset();
    cam_.reset();
}

void CameraTest::connect(const CameraText& camera)
{
    cam_.reset();
    plugIn({camera});
    cam_ = std::make_unique<ScriptedCamera>();
    cam_->connect(camera.serial);
    cam_->absValues[FlyCapture2::FRAME_RATE] = kFps;
    cam_->absValues[FlyCapture2::SHUTTER] = kExposureUs / 1000.0F;
    static_cast<void>(cam_->WriteRegister(0x610, 0x80000000, false));
    static_cast<void>(cam_->GetCameraInfo(&info_));
    journal().clear();
}

int CameraTest::grab(unsigned frames)
{
    host().config.fnum = frames;
    return proc_->ProcLoop(cam_.get(), &info_, &factory_);
}

int CameraTest::grab(std::vector<ScriptedFrame> frames)
{
    unsigned good = 0;
    for (const ScriptedFrame& frame : frames) {
        good += frame.fails ? 0 : 1;
    }
    cam_->frames = std::move(frames);
    return grab(good);
}

} // namespace kxtest
