// What the conformance tests share: a clean host, simulation, clock and journal for each test.
#ifndef KX_TEST_PLUGIN_TEST_H
#define KX_TEST_PLUGIN_TEST_H

#include "control/sim_control.h"
#include "journal.h"
#include "kx_log.h"
#include "recording_host.h"
#include "test_bus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kxtest {

/// Time of day when a test begins, in microseconds.
inline constexpr std::uint64_t kStartUs = 1'700'000'000'000'000;

/// A test of the plug-in: hand-driven clock, everything recorded, all levels to the system log.
class PluginTest : public testing::Test {
public:
    ~PluginTest() override;

protected:
    PluginTest();

    /// Puts these cameras on the bus.
    static void plugIn(const std::vector<CameraText>& cameras);
    /// Lets the next `count` calls of `operation` (all to come with 0) fail, after `skip` good
    /// ones.
    static void failCalls(const std::string& operation, unsigned skip = 0, unsigned count = 1);
    /// As the description of a failed call reads in the log.
    static std::string failureOf(const std::string& operation);
    /// Runs the plug-in once.
    static int run();
};

/// Runs the body in a process of its own, so that what the plug-in keeps for the life of the
/// process is fresh; the body's failed checks are the test's.
#define KX_IN_FRESH_PROCESS(...) kxtest::checkInFreshProcess([&] { __VA_ARGS__; })

/// See above.
void checkInFreshProcess(const std::function<void()>& body);

} // namespace kxtest

#endif
