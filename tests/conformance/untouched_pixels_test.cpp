// The plug-in never touches a pixel: it grabs into frame memory that it may neither read nor write.
#include "plugin_test.h"

#include <cstddef>

#include <sys/mman.h>
#include <unistd.h>

using kxtest::host;

namespace {

constexpr std::size_t kSlotBytes = std::size_t{4} << 20U;
constexpr std::uint32_t kSlots = 4;
constexpr std::size_t kBytes = kSlotBytes * kSlots;

/// The same memory at two addresses: one without any access and one for the simulated camera.
class TwofoldMemory {
public:
    TwofoldMemory()
    {
        const int file = memfd_create("frames", 0);
        if (file < 0 || ftruncate(file, static_cast<off_t>(kBytes)) != 0) {
            return;
        }
        guarded_ = map(file, PROT_NONE);
        writable_ = map(file, PROT_READ | PROT_WRITE);
        close(file);
        fcsim::aliasWrites(guarded_, writable_, kBytes);
    }
    ~TwofoldMemory()
    {
        fcsim::aliasWrites(nullptr, nullptr, 0);
        munmap(guarded_, kBytes);
        munmap(writable_, kBytes);
    }
    TwofoldMemory(const TwofoldMemory&) = delete;
    TwofoldMemory& operator=(const TwofoldMemory&) = delete;

    bool isMapped() const { return guarded_ != MAP_FAILED && writable_ != MAP_FAILED; }
    std::byte* guarded() const { return static_cast<std::byte*>(guarded_); }
    const std::byte* writable() const { return static_cast<const std::byte*>(writable_); }

private:
    static void* map(int file, int protection)
    {
        return mmap(nullptr, kBytes, protection, MAP_SHARED, file, 0);
    }

    void* guarded_ = MAP_FAILED;
    void* writable_ = MAP_FAILED;
};

class UntouchedPixelsTest : public kxtest::PluginTest {
protected:
    UntouchedPixelsTest()
    {
        host().config.bnum = kSlots;
        host().config.fnum = 20;
        host().bufPtr = [this](std::uint32_t index) -> void* {
            return memory_.guarded() + index * kSlotBytes;
        };
    }

    TwofoldMemory memory_;
};

TEST_F(UntouchedPixelsTest, TheMemoryIsGuarded)
{
    ASSERT_TRUE(memory_.isMapped());
    EXPECT_DEATH(
        {
            const volatile std::byte touched = *memory_.guarded();
            static_cast<void>(touched);
        },
        "");
}

TEST_F(UntouchedPixelsTest, FramesPassThroughMemoryThatThePlugInCannotReach)
{
    ASSERT_TRUE(memory_.isMapped());
    plugIn({kxtest::CameraText{}});
    EXPECT_EQ(run(), 0);
    ASSERT_EQ(host().exports.size(), 19U);
    for (const kxtest::HandedOver& frame : host().frames) {
        const auto* const pixels = static_cast<const std::byte*>(frame.frame);
        ASSERT_GE(pixels, memory_.guarded());
        ASSERT_LT(pixels, memory_.guarded() + kBytes);
        // The camera did write the picture, at the other address.
        const std::byte* const written = memory_.writable() + (pixels - memory_.guarded());
        std::size_t bright = 0;
        for (std::size_t offset = 0; offset < 10'000; ++offset) {
            bright += written[offset] != std::byte{0} ? 1U : 0U;
        }
        EXPECT_GT(bright, 0U);
    }
}

} // namespace
