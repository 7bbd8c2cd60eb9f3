// The simulated bus: what is on it, and what is said about bad descriptions.
#include "sim_fixture.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

using namespace FlyCapture2;

namespace {

class SimBus : public SimTest {
protected:
    static std::string problemOf(const std::string& toml)
    {
        return fcsim::loadBus(toml, "bus.toml");
    }

    BusManager bus;
};

TEST_F(SimBus, TheBuiltInBusHasAColourUsb3AMonoGigEAndAUsb2Camera)
{
    unsigned count = 0;
    ASSERT_EQ(bus.GetNumOfCameras(&count).GetType(), PGRERROR_OK);
    ASSERT_EQ(count, 3U);
    constexpr InterfaceType kKinds[] = {INTERFACE_USB3, INTERFACE_GIGE, INTERFACE_USB2};
    for (unsigned i = 0; i < count; ++i) {
        PGRGuid guid;
        InterfaceType kind = INTERFACE_UNKNOWN;
        CameraInfo info;
        ASSERT_EQ(bus.GetCameraFromIndex(i, &guid).GetType(), PGRERROR_OK);
        EXPECT_EQ(bus.GetInterfaceTypeFromGuid(&guid, &kind).GetType(), PGRERROR_OK);
        EXPECT_EQ(kind, kKinds[i]);
        ASSERT_EQ(camera.Connect(&guid).GetType(), PGRERROR_OK);
        ASSERT_EQ(camera.GetCameraInfo(&info).GetType(), PGRERROR_OK);
        EXPECT_EQ(info.isColorCamera, i == 0);
        unsigned serial = 0;
        EXPECT_EQ(bus.GetCameraSerialNumberFromIndex(i, &serial).GetType(), PGRERROR_OK);
        EXPECT_EQ(serial, info.serialNumber);
        camera.Disconnect();
    }
}

TEST_F(SimBus, AnIndexBeyondTheLastCameraIsRefused)
{
    PGRGuid guid;
    EXPECT_EQ(bus.GetCameraFromIndex(3, &guid).GetType(), PGRERROR_NOT_FOUND);
}

TEST_F(SimBus, OperationsThatAreLeftOutSaySo)
{
    EXPECT_EQ(bus.FireBusReset(nullptr).GetType(), PGRERROR_NOT_IMPLEMENTED);
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    EXPECT_EQ(camera.FireSoftwareTrigger().GetType(), PGRERROR_NOT_IMPLEMENTED);
}

TEST_F(SimBus, AMistypedKeyIsNamedWithItsLineAndTheLikelyOne)
{
    const std::string problem = problemOf(cameraToml("[camera.clock]\ndrift_pmp = 3.0\n"));
    EXPECT_NE(problem.find("bus.toml:16: camera.clock.drift_pmp: unknown key"), std::string::npos)
        << problem;
    EXPECT_NE(problem.find("did you mean \"drift_ppm\"?"), std::string::npos) << problem;
}

TEST_F(SimBus, AnImpossibleValueIsNamedWithItsRange)
{
    const std::string problem = problemOf(cameraToml("[camera.clock]\nwrap_seconds = 129\n"));
    EXPECT_EQ(problem, "bus.toml:16: camera.clock.wrap_seconds: 129 is not within 1 to 128");
}

TEST_F(SimBus, AnImpossibleRangeOfAPropertyIsNamed)
{
    const auto problemOfRange = [](const std::string& name, const std::string& range) {
        return problemOf(
            cameraToml("[camera.properties." + name + "]\nabsolute = " + range + "\n"));
    };
    EXPECT_EQ(problemOfRange("IRIS", "[-5.0, -1.0]"), "");
    EXPECT_EQ(problemOfRange("GAIN", "[-200.0, 200.0]"), "");
    EXPECT_EQ(problemOfRange("GAIN", "[-201.0, 200.0]"),
              "bus.toml:16: camera.properties.GAIN.absolute: -201 is not within -200 to 200");
    EXPECT_EQ(problemOfRange("GAMMA", "[0.0, 4.0]"),
              "bus.toml:16: camera.properties.GAMMA.absolute: 0 is not within 0.01 to 100");
    EXPECT_EQ(problemOfRange("HUE", "[0.0, 2e9]"),
              "bus.toml:16: camera.properties.HUE.absolute: 2e+09 is not within -1e+09 to 1e+09");
}

TEST_F(SimBus, ADefaultOutsideOfTheGivenRangeIsTheNearestInIt)
{
    ASSERT_EQ(fcsim::loadBus(cameraToml("[camera.properties.GAIN]\nabsolute = [3.0, 9.0]\n"
                                        "[camera.properties.SHARPNESS]\nraw = [2000, 3000]\n"),
                             "bus.toml"),
              "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    FlyCapture2::Property property(FlyCapture2::GAIN);
    ASSERT_EQ(camera.GetProperty(&property).GetType(), PGRERROR_OK);
    EXPECT_FLOAT_EQ(property.absValue, 3);
    property.type = FlyCapture2::SHARPNESS;
    ASSERT_EQ(camera.GetProperty(&property).GetType(), PGRERROR_OK);
    EXPECT_EQ(property.valueA, 2000U);
}

TEST_F(SimBus, AKeyWithALineEndLeavesTheMessageOnItsLine)
{
    EXPECT_EQ(problemOf(cameraToml("\"a\\nb\" = 1\n")),
              "bus.toml:15: camera.properties.FRAME_RATE.a\\u000Ab: unknown key");
}

TEST_F(SimBus, AMissingKeyIsNamed)
{
    EXPECT_EQ(problemOf("[[camera]]\nmodel = \"A\"\n"),
              "bus.toml:1: camera.serial: this key is missing");
}

TEST_F(SimBus, AWrongWordIsAnsweredWithTheRightOnes)
{
    EXPECT_EQ(problemOf(cameraToml("", "usb4")),
              "bus.toml:4: camera.interface: \"usb4\" is none of usb2, usb3, gige, ieee1394, "
              "unknown");
}

TEST_F(SimBus, BrokenTomlIsAnsweredWithItsLine)
{
    EXPECT_EQ(problemOf("[[camera]]\nmodel = \n").rfind("bus.toml:2: ", 0), 0U);
}

TEST_F(SimBus, ASerialNumberIsUsedOnce)
{
    const std::string problem = problemOf(cameraToml("") + cameraToml(""));
    EXPECT_NE(problem.find("camera.serial: 7001 is already taken"), std::string::npos) << problem;
}

TEST_F(SimBus, ABadDescriptionLeavesTheBusAsItWas)
{
    EXPECT_NE(problemOf(cameraToml("nonsense = 1\n")), "");
    unsigned count = 0;
    EXPECT_EQ(bus.GetNumOfCameras(&count).GetType(), PGRERROR_OK);
    EXPECT_EQ(count, 3U);
}

TEST_F(SimBus, ABadFileFailsEveryCallWithItsText)
{
    const auto file = std::filesystem::temp_directory_path() /
                      ("sim_bus_test_" + std::to_string(getpid()) + ".toml");
    std::ofstream(file) << "[[camera]]\nmodell = \"A\"\n";
    setenv("FLYCAPTURE2_SIM_BUS", file.c_str(), 1);
    fcsim::reset();
    unsetenv("FLYCAPTURE2_SIM_BUS");
    std::filesystem::remove(file);
    unsigned count = 0;
    const Error error = bus.GetNumOfCameras(&count);
    EXPECT_NE(error.GetType(), PGRERROR_OK);
    EXPECT_EQ(error.GetDescription(), file.string() + ":1: camera.model: this key is missing");
}

TEST_F(SimBus, AMissingFileIsNamed)
{
    setenv("FLYCAPTURE2_SIM_BUS", "/does/not/exist.toml", 1);
    fcsim::reset();
    unsetenv("FLYCAPTURE2_SIM_BUS");
    unsigned count = 0;
    EXPECT_STREQ(bus.GetNumOfCameras(&count).GetDescription(),
                 "/does/not/exist.toml: cannot be read");
}

} // namespace
