// The sensor that a bus describes, in the frames that its camera delivers.
#include "scene/renderer.h"
#include "sim_fixture.h"

#include <algorithm>
#include <vector>

using namespace FlyCapture2;

namespace {

std::string sensorToml(const std::string& sensorKeys, const std::string& sceneKeys)
{
    return "[[camera]]\nmodel = \"Test T1\"\nserial = 7001\ninterface = \"usb3\"\n"
           "register_time_us = 0\n"
           "[camera.sensor]\nwidth = 64\nheight = 32\n" +
           sensorKeys + "[camera.scene]\n" + sceneKeys;
}

class SimSensor : public SimTest {
protected:
    /// First frame of the camera with these keys.
    std::vector<unsigned char> firstFrame(const std::string& sensorKeys,
                                          const std::string& sceneKeys = "")
    {
        EXPECT_EQ(fcsim::loadBus(sensorToml(sensorKeys, sceneKeys), "test.toml"), "");
        EXPECT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
        EXPECT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
        Image image;
        EXPECT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_OK);
        return {image.GetData(), image.GetData() + image.GetDataSize()};
    }

    static std::vector<unsigned char> expectedFrame(const fcsim::SensorSettings& sensor,
                                                    const fcsim::SceneSettings& scene = {})
    {
        fcsim::FrameRequest request;
        request.width = sensor.width;
        request.height = sensor.height;
        std::vector<unsigned char> frame(std::size_t{request.width} * request.height);
        fcsim::Renderer(scene, sensor).render(request, frame.data());
        return frame;
    }

    static fcsim::SensorSettings describedSensor()
    {
        fcsim::SensorSettings sensor;
        sensor.width = 64;
        sensor.height = 32;
        sensor.title = "Test T1 7001";
        return sensor;
    }
};

TEST_F(SimSensor, IsNoisyByDefault)
{
    const auto frame = firstFrame("");
    EXPECT_EQ(frame, expectedFrame(describedSensor()));
    fcsim::SensorSettings quiet = describedSensor();
    quiet.noise = false;
    EXPECT_NE(frame, expectedFrame(quiet));
}

TEST_F(SimSensor, IsQuietWhenAskedTo)
{
    fcsim::SensorSettings quiet = describedSensor();
    quiet.noise = false;
    EXPECT_EQ(firstFrame("noise = false\n"), expectedFrame(quiet));
}

TEST_F(SimSensor, HasTheDescribedWellReadNoiseAndSeed)
{
    fcsim::SensorSettings sensor = describedSensor();
    sensor.fullWell = 500;
    sensor.readNoise = 60;
    sensor.noiseSeed = 9;
    EXPECT_EQ(firstFrame("full_well = 500\nread_noise = 60\nnoise_seed = 9\n"),
              expectedFrame(sensor));
}

TEST_F(SimSensor, SeesTheSceneAsDrawnWithTheReferenceExposure)
{
    fcsim::SceneSettings scene;
    scene.referenceExposureUs = 32000; // a quarter of the light
    const auto dark = firstFrame("", "reference_exposure_us = 32000\n");
    EXPECT_EQ(dark, expectedFrame(describedSensor(), scene));
    EXPECT_LT(*std::max_element(dark.begin(), dark.end()), 80);
}

TEST_F(SimSensor, RefusesImpossibleKeys)
{
    const auto problem = [](const std::string& sensorKeys, const std::string& sceneKeys = "") {
        return fcsim::loadBus(sensorToml(sensorKeys, sceneKeys), "bus.toml");
    };
    EXPECT_EQ(problem("full_well = 99\n"),
              "bus.toml:9: camera.sensor.full_well: 99 is not within 100 to 1e+09");
    EXPECT_EQ(problem("full_well = 100\n"), "");
    EXPECT_EQ(problem("read_noise = -0.5\n"),
              "bus.toml:9: camera.sensor.read_noise: -0.5 is not within 0 to 1e+06");
    EXPECT_EQ(problem("read_noise = 0\n"), "");
    EXPECT_EQ(problem("noise_seed = -1\n").rfind("bus.toml:9: camera.sensor.noise_seed: ", 0), 0U);
    EXPECT_EQ(problem("noise = 1\n").rfind("bus.toml:9: camera.sensor.noise: ", 0), 0U);
    EXPECT_EQ(problem("", "reference_exposure_us = 0.5\n")
                  .rfind("bus.toml:10: camera.scene.reference_exposure_us: ", 0),
              0U);
}

} // namespace
