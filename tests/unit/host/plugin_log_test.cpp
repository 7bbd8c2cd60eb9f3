// What the plug-in logs follows the settings, but for the moment before an exception of the host's.
#include "grab/plugin_log.h"
#include "loaded_plugin.h"
#include "services/service_exports.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace kxhost {
namespace {

std::uint32_t level()
{
    return kxtest::LoadedPlugin::logSwitch("gKxLogLevelLib");
}

TEST(PluginLog, FollowsTheSettings)
{
    const kxtest::LoadedPlugin plugin("");
    HostServices& host = services();
    const std::uint32_t before = level();
    host.settings.logLevel = before == 3 ? 4 : 3;
    logAsConfigured(host);
    EXPECT_EQ(level(), before) << "without a plug-in";
    logErrorsOnly(host);
    EXPECT_EQ(level(), before) << "without a plug-in";
    host.plugin = &*plugin;
    // Off, errors, warnings, trace: what is on of it while only errors are told.
    for (const auto& [configured, lowered] :
         {std::pair{0, 0U}, std::pair{1, 1U}, std::pair{2, 1U}, std::pair{5, 1U}}) {
        host.settings.logLevel = configured;
        logErrorsOnly(host);
        EXPECT_EQ(level(), lowered);
        logAsConfigured(host);
        EXPECT_EQ(level(), static_cast<std::uint32_t>(configured));
    }
    host.plugin = nullptr;
}

constexpr float kWarm = 40;

/// A capture that has delivered a frame of this width, with a plug-in that logs warnings.
class PluginLogInTheLoop : public testing::Test {
protected:
    void SetUp() override
    {
        host_.plugin = &*plugin_;
        host_.settings.logLevel = 2;
        logAsConfigured(host_);
        startCapture();
    }
    void TearDown() override
    {
        std::destroy_at(&host_);
        std::construct_at(&host_);
    }

    static void startCapture()
    {
        KxGi__ResetTermSigProc();
        KxGi__HaltStop(64, 48, kWarm);
    }
    /// The exception has just come.
    static void expectQuietUntilTheLoopHasEnded()
    {
        EXPECT_EQ(level(), 1U);
        KxGi__SetTermSigProc();
        EXPECT_EQ(level(), 2U);
    }

    kxtest::LoadedPlugin plugin_{""};
    HostServices& host_ = services();
};

TEST_F(PluginLogInTheLoop, IsQuietAboutAnEndThatWasAskedFor)
{
    host_.signals.post(kFinishInterrupt);
    KxGi__HaltUpdate(64, kWarm);
    EXPECT_EQ(level(), 2U);
    EXPECT_THROW(KxGi__HaltUpdate(64, kWarm), NoFrameToStopAt);
    expectQuietUntilTheLoopHasEnded();
}

TEST_F(PluginLogInTheLoop, IsQuietAboutACameraThatIsTakenForLost)
{
    constexpr float kUnknown = -321;
    KxGi__HaltUpdate(64, kUnknown);
    KxGi__HaltUpdate(64, kUnknown);
    EXPECT_EQ(level(), 2U);
    EXPECT_THROW(KxGi__HaltUpdate(64, kUnknown), CameraLost);
    expectQuietUntilTheLoopHasEnded();
}

TEST_F(PluginLogInTheLoop, IsQuietAboutACameraThatCameBackAsAnother)
{
    KxGi__SetTermSigProc();
    cameraLost(host_, "it is not on the bus");
    KxGi__ResetTermSigProc();
    EXPECT_THROW(KxGi__HaltStop(32, 48, kWarm), CameraLost);
    expectQuietUntilTheLoopHasEnded();
}

} // namespace
} // namespace kxhost
