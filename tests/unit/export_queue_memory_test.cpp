// What the writers of the queue do when there is no memory left. Large allocations can be made to
// fail in this program.
#include "export_queue.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <vector>

namespace {

/// Allocations of this size and above fail; 0 = none does.
std::atomic<std::size_t> failFrom = 0; // NOLINT(*-avoid-non-const-global-variables)

} // namespace

// Inlined, these look like pairs that do not match.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    const std::size_t limit = failFrom;
    void* const memory = limit != 0 && size >= limit ? nullptr : std::malloc(size);
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
    ASSERT_TRUE(queue.stage(info, pixels.data()));
    failFrom = pixels.size() / 2; // the writers' working memory
    queue.commit(1, {});
    queue.finish();
    failFrom = 0;
    EXPECT_EQ(queue.firstError(), "Cannot write frame 1: std::bad_alloc.");
    EXPECT_EQ(queue.totals().failed, 1U);
    EXPECT_EQ(queue.totals().written, 0U);
    info.timestampUs = 2;
    EXPECT_FALSE(queue.stage(info, pixels.data())) << "refused from then on";
}

} // namespace
} // namespace kxhost
