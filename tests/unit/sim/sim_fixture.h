// A simulated bus of one camera on a clock that is moved by hand.
#ifndef KX_TESTS_SIM_FIXTURE_H
#define KX_TESTS_SIM_FIXTURE_H

#include <FlyCapture2.h>

#include <gtest/gtest.h>

#include <string>

#include <control/sim_control.h>

constexpr unsigned kSerial = 7001;
constexpr std::uint64_t kStartUs = 1'700'000'000'000'000;

/// Description of the one camera; `more` is added below its `[camera.sensor]` table. 10 ms exposure
/// and 25 frames a second of 64 x 32 pixels.
inline std::string cameraToml(const std::string& more, const std::string& interface = "usb3")
{
    return "[[camera]]\nmodel = \"Test T1\"\nserial = 7001\ninterface = \"" + interface +
           "\"\nregister_time_us = 0\n"
           "[camera.sensor]\nwidth = 64\nheight = 32\n"
           "[camera.scene]\nkind = \"none\"\n"
           "[camera.properties.SHUTTER]\nvalue = 10.0\n"
           "[camera.properties.FRAME_RATE]\nvalue = 25.0\n" +
           more;
}

class SimTest : public testing::Test {
protected:
    void SetUp() override
    {
        fcsim::reset();
        fcsim::useManualClock(kStartUs);
    }
    void TearDown() override
    {
        camera.Disconnect();
        fcsim::reset();
    }

    /// Loads the camera and connects to it.
    void connect(const std::string& more = "", const std::string& interface = "usb3")
    {
        ASSERT_EQ(fcsim::loadBus(cameraToml(more, interface), "test.toml"), "");
        ASSERT_EQ(camera.Connect(nullptr).GetType(), FlyCapture2::PGRERROR_OK);
    }

    FlyCapture2::CameraStats stats()
    {
        FlyCapture2::CameraStats stats;
        EXPECT_EQ(camera.GetStats(&stats).GetType(), FlyCapture2::PGRERROR_OK);
        return stats;
    }

    void configure(int timeoutMs, FlyCapture2::GrabMode mode, unsigned buffers = 4)
    {
        FlyCapture2::FC2Config config;
        config.numBuffers = buffers;
        config.grabTimeout = timeoutMs;
        config.grabMode = mode;
        ASSERT_EQ(camera.SetConfiguration(&config).GetType(), FlyCapture2::PGRERROR_OK);
    }

    FlyCapture2::Camera camera;
};

#endif
