// Tests that drive a session object on one connected camera.
#ifndef KX_TEST_CAMERA_TEST_H
#define KX_TEST_CAMERA_TEST_H

#include "kx_pg_proc.h"
#include "plugin_test.h"
#include "scripted_camera.h"

#include <memory>
#include <string>
#include <vector>

namespace kxtest {

/// One camera, connected, with a session object and a factory of its own. The camera runs at
/// `kFps` frames per second with an exposure of `kExposureUs`, and its calls take no time.
class CameraTest : public PluginTest {
public:
    ~CameraTest() override;

protected:
    static constexpr float kFps = 30;
    static constexpr unsigned kPeriodUs = 33'333;
    static constexpr int kExposureUs = 10'000;

    CameraTest();

    /// Puts `camera` on the bus (in place of what was there), connects it and forgets the journal.
    void connect(const CameraText& camera = {});
    /// Runs the grab loop for this many frames (0 = without end).
    int grab(unsigned frames);
    /// As `grab`, with one scripted retrieval for each entry.
    int grab(std::vector<ScriptedFrame> frames);

    std::unique_ptr<ScriptedCamera> cam_;
    std::unique_ptr<KxPGrey::CCamProc> proc_;
    KxPGrey::CBufferFactory factory_;
    FlyCapture2::CameraInfo info_;
};

} // namespace kxtest

#endif
