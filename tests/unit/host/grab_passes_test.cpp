// What surrounds a grab: exit codes of passes, inventory, loader messages.
#include "grab/grab_passes.h"
#include "grab/installation.h"
#include "grab/inventory.h"
#include "grab/plugin.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace kxhost {
namespace {

TEST(Pass, CodesOfThePluginBecomeExitCodes)
{
    EXPECT_EQ(describePass(0, false).exitCode, kExitFine);
    EXPECT_EQ(describePass(0, true).exitCode, kExitFine);
    EXPECT_EQ(describePass(2, false).exitCode, kExitNoCamera);
    EXPECT_EQ(describePass(3, false).exitCode, kExitNoCamera);
    EXPECT_EQ(describePass(2, true).exitCode, kExitFine);
    EXPECT_EQ(describePass(3, true).exitCode, kExitFine);
    for (const int code : {-1, -2, -5, -10, -99}) {
        EXPECT_EQ(describePass(code, false).exitCode, kExitCamera) << code;
    }
    EXPECT_EQ(describePass(-10, true).exitCode, kExitFine);
    EXPECT_NE(describePass(-99, false).reason.find("-99"), std::string::npos);
}

constexpr std::string_view kLog =
    "[KX_PG_MAIN:i]: Printing all the devices information found:\n"
    "[KX_PG_MAIN:i]: == 0. Camera Device Information ==\n"
    "[KX_PG_MAIN:i]: ===================================\n"
    "[KX_PG_MAIN:i]: \tGUID             : 0x1 0x2 0x3 0x4\n"
    "[KX_PG_MAIN:i]: \tDeviceSerial     : 15322788\n"
    "[KX_PG_MAIN:i]: \tInterface        : USB3\n"
    "[KX_PG_MAIN:i]: detected PGrey USB device\n"
    "[KX_PG_MAIN:i]: == 1. Camera Device Information ==\n"
    "[KX_PG_MAIN:i]: \tDeviceSerial     : 7\n"
    "[KX_PG_MAIN:i]: \tInterface        : GigE\n"
    "[KX_PG_MAIN:i]: Loop 0. Check configured Model \"(none)\" with \"Model \"A\" (x)\" (result "
    "3)\n"
    "[KX_PG_MAIN:i]: can't connect to Camera for device 1, is it occupied by somebody else?\n";

TEST(Inventory, IsReadFromTheLog)
{
    const auto cameras = readInventory(kLog);
    ASSERT_EQ(cameras.size(), 2U);
    EXPECT_EQ(cameras[0].index, 0U);
    EXPECT_EQ(cameras[0].serial, "15322788");
    EXPECT_EQ(cameras[0].interface, "USB3");
    EXPECT_EQ(cameras[0].model, "Model \"A\" (x)");
    EXPECT_EQ(cameras[1].index, 1U);
    EXPECT_EQ(cameras[1].interface, "GigE");
    EXPECT_EQ(cameras[1].model, "");
    EXPECT_NE(inventoryText(cameras).find("in use"), std::string::npos);
    EXPECT_TRUE(readInventory("").empty());
    EXPECT_TRUE(readInventory("[KX_PG_MAIN:i]: \tDeviceSerial     : 7").empty());
}

TEST(Loading, AMissingCameraFunctionMeansAnotherRelease)
{
    const LoadError error =
        pluginLoadError("p.so", "libflycapture.so.2",
                        "p.so: undefined symbol: _ZN11FlyCapture26Camera14GetCyclingModeEv");
    EXPECT_EQ(error.exitCode(), kExitLibraryAge);
    EXPECT_NE(std::string(error.what()).find("-DFLYCAPTURE2_ROOT"), std::string::npos);
}

TEST(Loading, OtherTroubleIsThePlugins)
{
    EXPECT_EQ(pluginLoadError("p.so", "l", "p.so: undefined symbol: KxGi__New").exitCode(),
              kExitPlugin);
    EXPECT_EQ(pluginLoadError("p.so", "l", "p.so: file too short").exitCode(), kExitPlugin);
}

ExitCode loadWith(const PluginChoice& choice)
{
    try {
        const Plugin plugin(choice);
    } catch (const LoadError& error) {
        return error.exitCode();
    }
    return kExitFine;
}

TEST(Loading, TellsAMissingPluginFromAMissingLibrary)
{
    PluginChoice choice;
    choice.plugin = "/no/such/plug-in.so";
    EXPECT_EQ(loadWith(choice), kExitPlugin);
    choice.plugin = "/proc/self/exe";
    choice.cameraLibrary = "/no/such/library.so";
    EXPECT_EQ(loadWith(choice), kExitNoLibrary);
    choice.cameraLibrary = "libm.so.6"; // it can be loaded, but it is another library
    EXPECT_EQ(loadWith(choice), kExitNoLibrary);
}

TEST(Installation, PrefersTheBuildTree)
{
    const std::filesystem::path root = testing::TempDir() + "kxhost_places";
    std::filesystem::remove_all(root);
    std::filesystem::create_directories(root / "bin/sub");
    EXPECT_EQ(findPiece((root / "bin").string(), "sub/piece", "piece"), "");
    std::filesystem::create_directories(root / KXHOST_LIBDIR);
    std::ofstream(root / KXHOST_LIBDIR / "piece").close();
    EXPECT_EQ(findPiece((root / "bin").string(), "sub/piece", "piece"),
              std::filesystem::canonical(root / KXHOST_LIBDIR / "piece"));
    std::ofstream(root / "bin/sub/piece").close();
    EXPECT_EQ(findPiece((root / "bin").string(), "sub/piece", "piece"),
              std::filesystem::canonical(root / "bin/sub/piece"));
    std::filesystem::remove_all(root);
}

TEST(Installation, AProgramThatDoesNotKnowWhereItIsFindsNothing)
{
    // The working directory has both, as somebody else may have put them there.
    ASSERT_TRUE(std::filesystem::exists("."));
    EXPECT_EQ(findPiece("", ".", "."), "");
}

} // namespace
} // namespace kxhost
