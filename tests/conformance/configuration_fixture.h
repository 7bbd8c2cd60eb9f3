// What the tests of the configuration share: a colour camera and one configuration of it.
#ifndef KX_TEST_CONFIGURATION_FIXTURE_H
#define KX_TEST_CONFIGURATION_FIXTURE_H

#include "camera_test.h"

#include <string>
#include <vector>

namespace kxtest {

/// A colour camera of 640 x 480 with fixed gain and gamma.
class ConfigurationTest : public CameraTest {
protected:
    ConfigurationTest()
    {
        camera_.serial = 1000;
        camera_.model = "Cricket C1";
        camera_.sensor = "info = \"Small CMOS\", width = 640, height = 480, colour = true, "
                         "bayer_tile = \"RGGB\"";
        camera_.extra = "temperature = 41.45\n";
        connect(camera_);
        cam_->absValues[FlyCapture2::GAIN] = 2.5F;
        cam_->absValues[FlyCapture2::GAMMA] = 1.25F;
    }
    int configure(unsigned buffers = 4)
    {
        return proc_->ProcSetCamConfig(cam_.get(), &info_, buffers);
    }
    /// Log lines from the first that contains `begin` on, `count` of them.
    static std::vector<std::string> linesFrom(const std::string& begin, std::size_t count)
    {
        const auto logs = journal().logs();
        std::vector<std::string> found;
        for (const std::string& line : logs) {
            if ((!found.empty() || line.find(begin) != std::string::npos) && found.size() < count) {
                found.push_back(line);
            }
        }
        return found;
    }

    CameraText camera_;
};

} // namespace kxtest

#endif
