// Asking the real plug-in for the cameras: what it logs is understood, and nothing is left behind.
#include "grab/inventory_pass.h"
#include "grab/services.h"
#include "loaded_plugin.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

constexpr const char* kBus = R"([[camera]]
model = "Flea (colour) \"A\""
serial = 17
interface = "usb3"
sensor = { width = 64, height = 48 }
[[camera.call_fault]]
operation = "GetCameraInfo"
count = 1
throws = "gone"
[[camera]]
model = "Blackfly"
serial = 4294967295
interface = "gige"
sensor = { width = 64, height = 48 }
[[camera]]
model = "Chameleon"
serial = 18
interface = "usb2"
sensor = { width = 64, height = 48 }
)";

void expectAsBefore()
{
    EXPECT_FALSE(services().choice.has_value());
    EXPECT_EQ(kxtest::LoadedPlugin::logSwitch("gKxLogLevelLib"), 4U);
    EXPECT_EQ(kxtest::LoadedPlugin::logSwitch("gKxLogModeLib"), 2U);
    EXPECT_EQ(kxtest::LoadedPlugin::logSwitch("gKxLogIdLib"), 9U);
}

std::string text(const InventoryCamera& camera)
{
    return std::to_string(camera.index) + " " + camera.serial + " " + camera.interface + " " +
           camera.model;
}

TEST(InventoryPass, ReadsThePluginsLogAndLeavesNothingBehind)
{
    const kxtest::LoadedPlugin plugin(kBus);
    services().settings.logLevel = 4;
    services().settings.logSinks = 2;
    services().settings.logId = 9;
    // The library throws once.
    EXPECT_THROW(takeInventory(*plugin), PluginThrew);
    expectAsBefore();
    const std::vector<InventoryCamera> cameras = takeInventory(*plugin);
    expectAsBefore();
    ASSERT_EQ(cameras.size(), 3U);
    EXPECT_EQ(text(cameras[0]), "0 17 USB3 Flea (colour) \"A\"");
    EXPECT_EQ(text(cameras[1]), "1 4294967295 GigE Blackfly");
    EXPECT_EQ(text(cameras[2]), "2 18 USB2 Chameleon");
}

} // namespace
} // namespace kxhost
