// Tests of those who look at frames on their way to disk.
#include "export/export_queue.h"
#include "export/export_tap.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

namespace {

using kxhost::ExportQueue;
using kxhost::ExportSettings;
using kxhost::FrameInfo;
using kxhost::Instance;
using kxhost::PictureFormat;

/// Notes what it is shown: frame number, instance and pixels.
class Witness : public kxhost::ExportTap {
public:
    explicit Witness(bool wantsPixels = true) : wantsPixels_(wantsPixels) {}

    bool wantsPixels() noexcept override { return wantsPixels_; }
    void look(const kxhost::TappedFrame& frame) noexcept override
    {
        const std::lock_guard lock(mutex_);
        looks.push_back(text(frame));
    }
    void released(const kxhost::ReleasedFrame& frame) noexcept override
    {
        through.push_back(std::to_string(frame.number) + (frame.written ? " written" : " failed"));
        timestamps.push_back(frame.timestampUs);
    }
    void last(const kxhost::TappedFrame& frame) noexcept override { lasts.push_back(text(frame)); }

    std::vector<std::string> looks, through, lasts;
    std::vector<std::uint64_t> timestamps;

private:
    static std::string text(const kxhost::TappedFrame& frame)
    {
        return std::to_string(frame.number) +
               (frame.info.instance == Instance::kRaw ? " raw " : " converted ") +
               std::string(frame.pixels.begin(), frame.pixels.end());
    }

    const bool wantsPixels_;
    std::mutex mutex_;
};

/// A frame of two pixels, which are its time stamp as a digit and `second`.
void stage(ExportQueue& queue, std::uint64_t timestampUs, char second = 'r',
           Instance instance = Instance::kRaw)
{
    const std::string pixels = std::to_string(timestampUs) + second;
    queue.stage(FrameInfo{instance, 2, 1, "MONO8T", timestampUs}, pixels.data());
}

using Texts = std::vector<std::string>;

TEST(ExportTap, SeesEachFrameAndTheLastOneAgain)
{
    const kxtest::TemporaryFolder folder;
    ExportSettings settings;
    settings.folder = folder.file("out");
    settings.writerThreads = 1;
    settings.queueDepth = 2;
    Witness witness;
    Witness other;
    ExportQueue queue(settings);
    queue.addTap(witness);
    queue.addTap(other);
    ASSERT_EQ(queue.start(), "");
    for (std::uint64_t stamp = 4; stamp <= 8; ++stamp) {
        stage(queue, stamp);
        queue.commit(stamp, {});
    }
    queue.finish();
    queue.finish(); // again
    EXPECT_EQ(witness.looks, (Texts{"1 raw 4r", "2 raw 5r", "3 raw 6r", "4 raw 7r", "5 raw 8r"}));
    EXPECT_EQ(witness.through,
              (Texts{"1 written", "2 written", "3 written", "4 written", "5 written"}));
    EXPECT_EQ(witness.timestamps, (std::vector<std::uint64_t>{4, 5, 6, 7, 8}));
    EXPECT_EQ(witness.lasts, Texts{"5 raw 8r"});
    EXPECT_EQ(other.looks, witness.looks);
}

TEST(ExportTap, IsShownWhatCameFromTheCameraWhereThereIsAConvertedPictureToo)
{
    Witness witness;
    ExportQueue queue({});
    queue.addTap(witness);
    ASSERT_EQ(queue.start(), "");
    stage(queue, 1, 'c', Instance::kConverted);
    stage(queue, 1);
    queue.commit(1, {});
    stage(queue, 2, 'c', Instance::kConverted);
    queue.commit(2, {});
    queue.finish();
    std::ranges::sort(witness.looks);
    EXPECT_EQ(witness.looks, (Texts{"1 raw 1r", "2 converted 2c"}));
}

TEST(ExportTap, GetsPixelsOfFramesThatAreNotWrittenIfItWants)
{
    for (const bool wants : {false, true}) {
        Witness witness(wants);
        ExportQueue queue({}); // no folder
        queue.addTap(witness);
        ASSERT_EQ(queue.start(), "");
        stage(queue, 1);
        queue.commit(1, {});
        queue.finish();
        EXPECT_EQ(witness.looks, Texts{wants ? "1 raw 1r" : "1 raw "});
        EXPECT_EQ(witness.through, Texts{"1 written"});
    }
}

TEST(ExportTap, DoesNotSeePicturesThatCouldNotBeWritten)
{
    const kxtest::TemporaryFolder folder;
    ExportSettings settings;
    settings.folder = folder.path().string();
    settings.format = PictureFormat::kRaw;
    Witness witness;
    ExportQueue queue(settings);
    queue.addTap(witness);
    ASSERT_EQ(queue.start(), "");
    std::filesystem::create_directory(folder.file("frame_000002.raw")); // takes its name
    for (const std::uint64_t stamp : {1U, 2U}) {
        stage(queue, stamp);
        queue.commit(stamp, {});
    }
    queue.finish();
    EXPECT_EQ(witness.looks, Texts{"1 raw 1r"});
    EXPECT_EQ(witness.through, (Texts{"1 written", "2 failed"}));
    EXPECT_EQ(witness.lasts, Texts());
}

TEST(ExportTap, AFrameStagedBehindTheLastOneIsNotTakenForIt)
{
    ExportSettings settings;
    settings.queueDepth = 1; // both share the place
    Witness witness;
    ExportQueue queue(settings);
    queue.addTap(witness);
    ASSERT_EQ(queue.start(), "");
    stage(queue, 1);
    queue.commit(1, {});
    stage(queue, 2); // never committed
    queue.finish();
    EXPECT_EQ(witness.looks, Texts{"1 raw 1r"});
    EXPECT_EQ(witness.lasts, Texts());
}

TEST(ExportTap, AQueueWithoutFramesHasNoLastOne)
{
    Witness witness;
    ExportQueue queue({});
    queue.addTap(witness);
    ASSERT_EQ(queue.start(), "");
    queue.finish();
    EXPECT_EQ(witness.lasts, Texts());
}

} // namespace
