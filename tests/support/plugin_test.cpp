// What the conformance tests share.
#include "plugin_test.h"

#include "kx_plugin.h"
#include "system_calls.h"

#include <cstdio>
#include <cstdlib>

namespace kxtest {

PluginTest::PluginTest()
{
    host().reset();
    fcsim::reset();
    fcsim::clearFaults();
    fcsim::useManualClock(kStartUs);
    fcsim::recordCalls(true);
    takeCpuQueries();
    setRealTime(RealTime::refused);
    onUsleep(nullptr);
    gKxLogLevelLib = 5;
    gKxLogModeLib = kxlog::kToSyslog;
    gKxLogIdLib = 0;
    journal().clear();
}

PluginTest::~PluginTest()
{
    gKxLogLevelLib = 0;
    gKxLogModeLib = 0;
    fcsim::clearFaults();
}

void PluginTest::plugIn(const std::vector<CameraText>& cameras)
{
    ASSERT_EQ(fcsim::loadBus(busText(cameras), "test bus"), "");
}

void PluginTest::failCalls(const std::string& operation, unsigned skip, unsigned count)
{
    fcsim::Fault fault;
    fault.operation = operation;
    fault.skip = skip;
    fault.count = count;
    fault.description = operation + " refused";
    fcsim::addFault(fault);
}

std::string PluginTest::failureOf(const std::string& operation)
{
    return "simulated: " + operation + " refused";
}

int PluginTest::run()
{
    return KxLibProc();
}

void checkInFreshProcess(const std::function<void()>& body)
{
    // The "threadsafe" style starts the executable anew for the one test.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            body();
            std::fflush(nullptr);
            std::_Exit(testing::Test::HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace kxtest
