// What the writers of the queue do when there is no memory left. Large allocations can be made to
// fail in this program.
#include "export/export_queue.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <vector>

namespace {

/// Allocations of this size and above fail; 0 = none does.
std::atomic<std::size_t> failFrom = 0; // NOLINT(*-avoid-non-const-global-variables)
/// Of those, so many succeed first.
std::atomic<int> succeedFirst = 0; // NOLINT(*-avoid-non-const-global-variables)

} // namespace

// Inlined, these look like pairs that do not match.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    const std::size_t limit = failFrom;
    const bool fails = limit != 0 && size >= limit && succeedFirst-- <= 0;
    void* const memory = fails ? nullptr : std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace kxhost {
namespace {

TEST(ExportQueueMemory, AWriterWithoutMemoryIsAnExportError)
{
    constexpr std::uint32_t kSide = 512;
    const kxtest::TemporaryFolder folder;
    ExportSettings settings;
    settings.folder = folder.file("out");
    ExportQueue queue(settings);
    ASSERT_EQ(queue.start(), "");
    queue.reserve(Instance::kRaw, std::size_t{kSide} * kSide);
    const std::vector<std::uint8_t> pixels(std::size_t{kSide} * kSide);
    FrameInfo info{Instance::kRaw, kSide, kSide, "MONO8T", 1};
    ASSERT_EQ(queue.stage(info, pixels.data()).result, Staging::kAccepted);
    failFrom = pixels.size() / 2; // the writers' working memory
    queue.commit(1, {});
    queue.finish();
    failFrom = 0;
    EXPECT_EQ(queue.firstError(), "Cannot write frame 1: std::bad_alloc.");
    EXPECT_EQ(queue.totals().failed, 1U);
    EXPECT_EQ(queue.totals().written, 0U);
    info.timestampUs = 2;
    EXPECT_EQ(queue.stage(info, pixels.data()).result, Staging::kFailed) << "from then on";
    EXPECT_EQ(queue.failedFrames(), std::vector<std::optional<std::uint32_t>>(1));
}

/// A queue that writes raw pictures of 300 KB.
class SmallMemory : public testing::Test {
protected:
    SmallMemory() { EXPECT_EQ(queue_.start(), ""); }
    ~SmallMemory() override { failFrom = 0; }

    static ExportSettings settings(const std::string& folder)
    {
        ExportSettings settings;
        settings.folder = folder;
        settings.format = PictureFormat::kRaw;
        settings.queueDepth = 4;
        settings.whenFull = WhenFull::kDrop;
        return settings;
    }
    Staging stage(std::uint64_t number)
    {
        return queue_.stage({Instance::kRaw, 640, 480, "MONO8T", number}, pixels_.data()).result;
    }

    kxtest::TemporaryFolder folder_;
    ExportQueue queue_{settings(folder_.file("out"))};
    const std::vector<std::uint8_t> pixels_ = std::vector<std::uint8_t>(std::size_t{640} * 480);
};

TEST_F(SmallMemory, FramesWithoutMemoryAreRefusedAndTheNextIsTriedAgain)
{
    failFrom = 200'000;
    EXPECT_EQ(queue_.reserve(Instance::kRaw, pixels_.size()), 0U);
    EXPECT_EQ(stage(1), Staging::kNoMemory);
    queue_.commit(1, {}); // nothing is there
    failFrom = 0;
    EXPECT_EQ(stage(2), Staging::kAccepted);
    queue_.commit(2, {});
    queue_.finish();
    EXPECT_EQ(queue_.totals().refusedMemory, 1U);
    EXPECT_EQ(queue_.totals().written, 1U);
    EXPECT_EQ(queue_.firstError(), "");
}

TEST_F(SmallMemory, TheQueueIsAsLongAsThereIsMemory)
{
    EXPECT_EQ(queue_.reserve(Instance::kConverted, 1'000), 4U);
    succeedFirst = 2;
    failFrom = 200'000;
    EXPECT_EQ(queue_.reserve(Instance::kRaw, pixels_.size()), 2U);
    failFrom = 0;
    for (std::uint64_t number = 1; number <= 20; ++number) {
        if (stage(number) == Staging::kAccepted) {
            queue_.commit(number, {});
        }
    }
    queue_.finish();
    EXPECT_LE(queue_.totals().deepest, 2U);
    EXPECT_EQ(queue_.totals().refusedMemory, 0U);
    EXPECT_EQ(queue_.totals().written + queue_.totals().refusedFull, 20U);
}

} // namespace
} // namespace kxhost
