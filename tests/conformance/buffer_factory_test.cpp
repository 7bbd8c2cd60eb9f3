// The buffer factory: which frame memory it accepts, and what it says about it.
#include "kx_pg_factory.h"
#include "plugin_test.h"
#include "stdout_capture.h"
#include "system_calls.h"

using kxtest::debug;
using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr std::uintptr_t kBase = 0x7f0000100000;

class BufferFactoryTest : public kxtest::PluginTest {
protected:
    /// Slots at these distances from the base; none behind the last.
    static void setSlots(const std::vector<std::ptrdiff_t>& distances)
    {
        host().bufPtr = [distances](std::uint32_t index) {
            return index < distances.size() ? address(distances[index]) : nullptr;
        };
    }
    static void* address(std::ptrdiff_t distance)
    {
        // Never read or written: the factory only compares addresses.
        // NOLINTNEXTLINE(performance-no-int-to-ptr)
        return reinterpret_cast<void*>(kBase + static_cast<std::uintptr_t>(distance));
    }

    KxPGrey::CBufferFactory factory_;
};

const char* const kBadInput = "4 [w|GetBuffer] Incorrect input params detected";

TEST_F(BufferFactoryTest, AcceptsEqualStepsAndReportsTheStep)
{
    setSlots({0, 4096, 8192});
    unsigned size = 4000;
    EXPECT_EQ(factory_.GetBuffer(&size, 3), address(0));
    EXPECT_EQ(size, 4096U);
    EXPECT_EQ(factory_.base, address(0));
    const auto slotLine = [](std::ptrdiff_t index) {
        return debug("GetBuffer", format("AllocBuffer: asked size 4000 - idx=%td buff %p (cpu=%i)",
                                         index, address(4096 * index), kxtest::kCpu));
    };
    EXPECT_THAT(journal().logs(),
                ElementsAre(slotLine(0), slotLine(1), slotLine(2),
                            info(format("return flat buffer: %p, block size 4096 (asked 4000)",
                                        address(0)))));
}

TEST_F(BufferFactoryTest, AsksForTheProcessorOncePerSink)
{
    setSlots({0, 100});
    unsigned size = 100;
    factory_.GetBuffer(&size, 2);
    EXPECT_EQ(kxtest::takeCpuQueries(), 2U);
    gKxLogModeLib = kxlog::kToSyslog | kxlog::kToStdout;
    kxtest::StdoutCapture output;
    factory_.GetBuffer(&size, 2);
    output.lines();
    EXPECT_EQ(kxtest::takeCpuQueries(), 4U);
    gKxLogLevelLib = 3;
    factory_.GetBuffer(&size, 2);
    EXPECT_EQ(kxtest::takeCpuQueries(), 0U);
}

TEST_F(BufferFactoryTest, RefusesEmptyArguments)
{
    setSlots({0, 4096});
    unsigned size = 0;
    EXPECT_EQ(factory_.GetBuffer(nullptr, 2), nullptr);
    EXPECT_EQ(factory_.GetBuffer(&size, 2), nullptr);
    size = 4000;
    EXPECT_EQ(factory_.GetBuffer(&size, 0), nullptr);
    EXPECT_EQ(size, 4000U);
    EXPECT_THAT(journal().logs(), ElementsAre(kBadInput, kBadInput, kBadInput));
    EXPECT_EQ(journal().count("KxGiMem__GetBufPtr"), 0U);
}

TEST_F(BufferFactoryTest, RefusesAPoolWithoutFirstSlot)
{
    setSlots({});
    unsigned size = 4000;
    EXPECT_EQ(factory_.GetBuffer(&size, 2), nullptr);
    EXPECT_THAT(journal().logs(), ElementsAre("4 [w|GetBuffer] The buffer flat zero head found"));
}

TEST_F(BufferFactoryTest, AcceptsASingleSlotSilently)
{
    setSlots({0});
    unsigned size = 4000;
    EXPECT_EQ(factory_.GetBuffer(&size, 1), address(0));
    EXPECT_EQ(size, 4000U);
    EXPECT_EQ(factory_.base, address(0));
    EXPECT_THAT(journal().logsWith("return flat buffer"), IsEmpty());
}

struct BadPool {
    const char* name;
    std::vector<std::ptrdiff_t> distances;
};

class BadPoolTest : public BufferFactoryTest, public testing::WithParamInterface<BadPool> {};

TEST_P(BadPoolTest, IsRefused)
{
    setSlots({0, 4096});
    unsigned size = 4000;
    ASSERT_NE(factory_.GetBuffer(&size, 2), nullptr);

    setSlots(GetParam().distances);
    size = 4000;
    EXPECT_EQ(factory_.GetBuffer(&size, static_cast<unsigned>(GetParam().distances.size())),
              nullptr);
    EXPECT_EQ(size, 4000U);
    EXPECT_EQ(factory_.base, nullptr);
    const auto complaints = journal().logsWith("Allocated buffer flat is incorrect !");
    ASSERT_EQ(complaints.size(), 1U);
    EXPECT_THAT(complaints[0], testing::MatchesRegex("3 \\[e\\|.*kx_pg_factory\\.cpp:[0-9]+\\] "
                                                     "Allocated buffer flat is incorrect !"));
}

INSTANTIATE_TEST_SUITE_P(
    BufferFactory, BadPoolTest,
    testing::Values(BadPool{"UnequalStep", {0, 4096, 8200}},
                    BadPool{"SmallerStep", {0, 8192, 12288}}, BadPool{"TooClose", {0, 3999}},
                    BadPool{"Falling", {0, -4096}}, BadPool{"TurningBack", {0, 4096, 0}},
                    BadPool{"SameAddress", {0, 0}}, BadPool{"TooFarApart", {0, 0x100001000}}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(BufferFactoryTest, IsNotHeldUpByACountThatIsNotTrue)
{
    constexpr unsigned kAnyNumber = 0xFFFFFFFF;
    unsigned size = 4000;
    // Slots as far as there are any, and the one that is not there.
    setSlots({0, 4096});
    EXPECT_EQ(factory_.GetBuffer(&size, kAnyNumber), nullptr);
    EXPECT_EQ(journal().count("KxGiMem__GetBufPtr"), 1U + 3U);
    EXPECT_THAT(journal().logsWith("AllocBuffer: "), SizeIs(3));
    // The same few again and again.
    host().bufPtr = [](std::uint32_t index) { return address(std::ptrdiff_t{index % 2} * 4096); };
    journal().clear();
    EXPECT_EQ(factory_.GetBuffer(&size, kAnyNumber), nullptr);
    EXPECT_THAT(journal().logsWith("AllocBuffer: "), SizeIs(1001));
    EXPECT_THAT(journal().logsWith("Allocated buffer flat is incorrect !"), SizeIs(1));
}

TEST_F(BufferFactoryTest, ShowsAllSlotsOfAFlatPool)
{
    host().bufPtr = [](std::uint32_t index) {
        return address(static_cast<std::ptrdiff_t>(index) * 4096);
    };
    unsigned size = 4000;
    EXPECT_EQ(factory_.GetBuffer(&size, 3000), address(0));
    EXPECT_THAT(journal().logsWith("AllocBuffer: "), SizeIs(3000));
}

TEST_F(BufferFactoryTest, StartsEmpty)
{
    EXPECT_EQ(factory_.base, nullptr);
}

} // namespace
