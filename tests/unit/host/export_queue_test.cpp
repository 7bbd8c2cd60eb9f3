// Tests of the queue between the grab thread and the writers.
#include "export/export_queue.h"
#include "read_picture.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <atomic>
#include <csignal>
#include <thread>

#include <sys/resource.h>
#include <sys/stat.h>

namespace {

using kxhost::ExportQueue;
using kxhost::ExportSettings;
using kxhost::ExportTotals;
using kxhost::FrameInfo;
using kxhost::Instance;
using kxhost::PictureFormat;
using kxhost::Staging;
using kxhost::WhenFull;
using kxtest::TemporaryFolder;
using Json = nlohmann::json;

ExportSettings settingsFor(const TemporaryFolder& folder)
{
    ExportSettings settings;
    settings.folder = folder.path().string();
    settings.format = PictureFormat::kRaw;
    return settings;
}

/// A frame of 4 x 1 pixels, all of the value `number`.
bool stageFrame(ExportQueue& queue, std::uint64_t number, Instance instance = Instance::kRaw)
{
    const std::vector<std::uint8_t> pixels(4, static_cast<std::uint8_t>(number));
    return queue.stage(FrameInfo{instance, 4, 1, "MONO8T", number}, pixels.data()).result ==
           Staging::kAccepted;
}

void commitFrame(ExportQueue& queue, std::uint64_t number)
{
    kxhost::ScenarioValues values;
    values.timestampUs = number;
    queue.commit(number, values);
}

std::vector<Json> metadataOf(const TemporaryFolder& folder)
{
    std::vector<Json> lines;
    for (const std::string& line : kxtest::readLines(folder.file("frames.ndjson"))) {
        lines.push_back(Json::parse(line));
    }
    return lines;
}

/// Makes the writers stand still: the name under which the first picture is written aside is a pipe
/// that nobody reads, until `release` is called. REQUIRES: the queue is started, which removes what
/// has such a name.
class StalledWriter {
public:
    explicit StalledWriter(const TemporaryFolder& folder)
        : pipe_(folder.file(".frame_000001.raw.part"))
    {
        EXPECT_EQ(::mkfifo(pipe_.c_str(), 0600), 0);
    }
    ~StalledWriter() { release(); }
    StalledWriter(const StalledWriter&) = delete;
    StalledWriter& operator=(const StalledWriter&) = delete;

    void release()
    {
        if (!released_) {
            released_ = true;
            kxtest::readText(pipe_);
        }
    }

private:
    std::string pipe_;
    bool released_ = false;
};

TEST(ExportQueue, FramesComeOutInOrderWhoeverWritesThem)
{
    const TemporaryFolder folder;
    ExportSettings settings = settingsFor(folder);
    settings.writerThreads = 4;
    settings.queueDepth = 3;
    ExportQueue queue(settings);
    ASSERT_EQ(queue.start(), "");
    for (std::uint64_t i = 1; i <= 200; ++i) {
        ASSERT_TRUE(stageFrame(queue, i));
        commitFrame(queue, i);
    }
    queue.finish();
    const std::vector<Json> lines = metadataOf(folder);
    ASSERT_EQ(lines.size(), 200U);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        ASSERT_EQ(lines[i]["number"], i + 1);
        ASSERT_EQ(lines[i]["timestamp_us"], i + 1);
        const std::string file = lines[i]["pictures"][0]["file"];
        ASSERT_EQ(kxtest::readText(folder.file(file)),
                  std::string(4, static_cast<char>(static_cast<std::uint8_t>(i + 1))));
    }
    const ExportTotals totals = queue.totals();
    EXPECT_EQ(totals.accepted, 200U);
    EXPECT_EQ(totals.written, 200U);
    EXPECT_EQ(totals.pictures, 200U);
    EXPECT_EQ(totals.bytes, 800U);
    EXPECT_EQ(totals.failed + totals.refusedFull + totals.refusedFailed, 0U);
    EXPECT_LE(totals.deepest, 3U);
    EXPECT_EQ(queue.firstError(), "");
}

TEST(ExportQueue, TheCallerMayOverwriteThePixelsAtOnce)
{
    const TemporaryFolder folder;
    ExportQueue queue(settingsFor(folder));
    ASSERT_EQ(queue.start(), "");
    std::string pixels = "abcd";
    ASSERT_EQ(queue.stage(FrameInfo{Instance::kRaw, 4, 1, "MONO8T", 1}, pixels.data()).result,
              Staging::kAccepted);
    pixels = "XXXX";
    commitFrame(queue, 1);
    queue.finish();
    EXPECT_EQ(kxtest::readText(folder.file("frame_000001.raw")), "abcd");
}

TEST(ExportQueue, AFrameMayHaveTwoPictures)
{
    const TemporaryFolder folder;
    ExportQueue queue(settingsFor(folder));
    ASSERT_EQ(queue.start(), "");
    ASSERT_TRUE(stageFrame(queue, 1, Instance::kConverted));
    ASSERT_TRUE(stageFrame(queue, 1, Instance::kRaw));
    commitFrame(queue, 1);
    queue.finish();
    const std::vector<Json> lines = metadataOf(folder);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0]["pictures"][0]["file"], "frame_000001.raw");
    EXPECT_EQ(lines[0]["pictures"][1]["file"], "frame_000001_converted.raw");
    EXPECT_EQ(queue.totals().written, 1U);
    EXPECT_EQ(queue.totals().pictures, 2U);
}

TEST(ExportQueue, WhatIsNeverCommittedIsForgotten)
{
    const TemporaryFolder folder;
    ExportQueue queue(settingsFor(folder));
    ASSERT_EQ(queue.start(), "");
    ASSERT_TRUE(stageFrame(queue, 1, Instance::kConverted));
    ASSERT_TRUE(stageFrame(queue, 2, Instance::kRaw));
    commitFrame(queue, 2);
    commitFrame(queue, 3); // nothing staged
    queue.finish();
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"frame_000001.raw", "frames.ndjson"}));
    EXPECT_EQ(queue.totals().accepted, 1U);
}

TEST(ExportQueue, RefusesWhenFullIfToldTo)
{
    const TemporaryFolder folder;
    ExportSettings settings = settingsFor(folder);
    settings.queueDepth = 2;
    settings.whenFull = WhenFull::kDrop;
    ExportQueue queue(settings);
    ASSERT_EQ(queue.start(), "");
    StalledWriter stalled(folder);
    for (std::uint64_t i = 1; i <= 2; ++i) {
        ASSERT_TRUE(stageFrame(queue, i));
        commitFrame(queue, i);
    }
    EXPECT_FALSE(stageFrame(queue, 3));
    commitFrame(queue, 3);
    EXPECT_EQ(queue.totals().refusedFull, 1U);
    EXPECT_EQ(queue.totals().accepted, 2U);
    stalled.release();
    queue.finish();
    EXPECT_EQ(queue.totals().written, 2U);
}

TEST(ExportQueue, WaitsWhenFullIfToldTo)
{
    const TemporaryFolder folder;
    ExportSettings settings = settingsFor(folder);
    settings.queueDepth = 1;
    ExportQueue queue(settings);
    ASSERT_EQ(queue.start(), "");
    StalledWriter stalled(folder);
    ASSERT_TRUE(stageFrame(queue, 1));
    commitFrame(queue, 1);
    std::thread reader([&] { stalled.release(); });
    EXPECT_TRUE(stageFrame(queue, 2)); // returns only when the first frame is written
    EXPECT_EQ(queue.totals().written, 1U);
    commitFrame(queue, 2);
    reader.join();
    queue.finish();
    EXPECT_EQ(queue.totals().written, 2U);
    EXPECT_EQ(queue.totals().refusedFull, 0U);
}

TEST(ExportQueue, AfterAnErrorEverythingIsRefusedAndAccountedFor)
{
    const TemporaryFolder folder;
    std::signal(SIGXFSZ, SIG_IGN);
    ExportQueue queue(settingsFor(folder));
    ASSERT_EQ(queue.start(), "");
    // The name of the third picture is taken by a folder.
    std::filesystem::create_directory(folder.file("frame_000003.raw"));
    std::uint64_t offered = 0;
    while (queue.firstError().empty() && offered < 100000) {
        ++offered;
        if (stageFrame(queue, offered)) {
            commitFrame(queue, offered);
        }
    }
    EXPECT_FALSE(stageFrame(queue, ++offered));
    queue.finish();
    EXPECT_EQ(queue.firstError(),
              "Cannot write " + folder.file("frame_000003.raw") + ": Is a directory.");
    const ExportTotals totals = queue.totals();
    EXPECT_EQ(totals.accepted, totals.written + totals.failed);
    EXPECT_EQ(offered, totals.accepted + totals.refusedFailed);
    EXPECT_GE(totals.failed, 1U);
    EXPECT_GE(totals.written, 2U);
    // Each line of metadata belongs to pictures that are there.
    EXPECT_EQ(metadataOf(folder).size(), totals.written);
    for (const Json& line : metadataOf(folder)) {
        EXPECT_TRUE(std::filesystem::is_regular_file(
            folder.file(line["pictures"][0]["file"].get<std::string>())));
    }
}

TEST(ExportQueue, AnUnknownCodecIsAnExportError)
{
    const TemporaryFolder folder;
    ExportQueue queue(settingsFor(folder));
    ASSERT_EQ(queue.start(), "");
    EXPECT_EQ(queue.stage(FrameInfo{Instance::kRaw, 1, 1, "FOO", 1}, "x").result, Staging::kFailed);
    EXPECT_EQ(queue.firstError(), "Frames of the codec \"FOO\" cannot be written.");
}

TEST(ExportQueue, WhatAKilledGrabHasLeftOfAPictureIsRemoved)
{
    const TemporaryFolder folder;
    kxtest::writeText(folder.file(".frame_000001.raw.part"), "half");
    kxtest::writeText(folder.file(".other_000001.raw.part"), "of another grab");
    kxtest::writeText(folder.file(".notes.part"), "of somebody else");
    ExportQueue queue(settingsFor(folder));
    ASSERT_EQ(queue.start(), "");
    EXPECT_EQ(folder.names(), (std::vector<std::string>{".notes.part", ".other_000001.raw.part"}));
}

TEST(ExportQueue, AGrabThatMayNotStartRemovesNothing)
{
    const TemporaryFolder folder;
    kxtest::writeText(folder.file("frame_000001.raw"), "old");
    kxtest::writeText(folder.file(".frame_000002.raw.part"), "of a grab that may run");
    EXPECT_NE(ExportQueue(settingsFor(folder)).start(), "");
    EXPECT_EQ(folder.names().size(), 2U);
}

TEST(ExportQueue, FramesOfAnEarlierGrabAreNotReplacedUnasked)
{
    const TemporaryFolder folder;
    kxtest::writeText(folder.file("frame_000001.raw"), "old");
    ExportSettings settings = settingsFor(folder);
    EXPECT_EQ(ExportQueue(settings).start(),
              "The folder " + settings.folder +
                  " holds frames of an earlier grab (frame_000001.raw): name another folder, or "
                  "overwrite them (--set output.overwrite=true).");
    settings.overwrite = true;
    ExportQueue queue(settings);
    ASSERT_EQ(queue.start(), "");
    ASSERT_TRUE(stageFrame(queue, 'n'));
    commitFrame(queue, 'n');
    queue.finish();
    EXPECT_EQ(kxtest::readText(folder.file("frame_000001.raw")), "nnnn");
}

TEST(ExportQueue, AFolderThatCannotBeMadeStopsTheStart)
{
    const TemporaryFolder folder;
    kxtest::writeText(folder.file("file"), "");
    ExportSettings settings = settingsFor(folder);
    settings.folder = folder.file("file/out");
    EXPECT_EQ(ExportQueue(settings).start(),
              "Cannot create the folder " + settings.folder + ": Not a directory.");
}

TEST(ExportQueue, WithoutFolderFramesAreCountedOnly)
{
    ExportSettings settings;
    ExportQueue queue(settings);
    ASSERT_EQ(queue.start(), "");
    queue.reserve(Instance::kRaw, 1000);
    for (std::uint64_t i = 1; i <= 50; ++i) {
        ASSERT_TRUE(stageFrame(queue, i));
        commitFrame(queue, i);
    }
    queue.finish();
    EXPECT_EQ(queue.totals().written, 50U);
    EXPECT_EQ(queue.totals().pictures, 0U);
}

TEST(ExportQueue, FinishingTwiceIsTheSameAsOnce)
{
    const TemporaryFolder folder;
    ExportQueue queue(settingsFor(folder));
    ASSERT_EQ(queue.start(), "");
    ASSERT_TRUE(stageFrame(queue, 1));
    commitFrame(queue, 1);
    queue.finish();
    queue.finish();
    EXPECT_EQ(queue.totals().written, 1U);
}

TEST(ExportQueue, ReservingWaitsForFramesOfAnotherSize)
{
    const TemporaryFolder folder;
    ExportQueue queue(settingsFor(folder));
    ASSERT_EQ(queue.start(), "");
    for (std::uint64_t i = 1; i <= 20; ++i) {
        queue.reserve(Instance::kRaw, 4 * i);
        ASSERT_TRUE(stageFrame(queue, i));
        commitFrame(queue, i);
    }
    queue.finish();
    EXPECT_EQ(queue.totals().written, 20U);
}

TEST(ExportQueueEnd, NothingIsAcceptedBehindTheEnd)
{
    const TemporaryFolder folder;
    ExportQueue queue(settingsFor(folder));
    ASSERT_EQ(queue.start(), "");
    ASSERT_TRUE(stageFrame(queue, 1));
    commitFrame(queue, 1);
    queue.finish();
    EXPECT_FALSE(stageFrame(queue, 2)) << "there are no writers any more";
    commitFrame(queue, 2);
    EXPECT_EQ(queue.totals().accepted, 1U);
    EXPECT_EQ(queue.totals().written, 1U);
    EXPECT_EQ(queue.totals().refusedFailed, 1U);
}

TEST(ExportQueueEnd, AFrameWhoseCommitComesBehindTheEndHasFailed)
{
    const TemporaryFolder folder;
    ExportQueue queue(settingsFor(folder));
    ASSERT_EQ(queue.start(), "");
    ASSERT_TRUE(stageFrame(queue, 1));
    queue.finish();
    kxhost::ScenarioValues values;
    values.frameCounter = 77;
    queue.commit(1, values);
    queue.commit(1, values); // it is not staged any more
    EXPECT_EQ(queue.totals().accepted, 1U);
    EXPECT_EQ(queue.totals().failed, 1U);
    EXPECT_EQ(queue.failedFrames(), std::vector<std::optional<std::uint32_t>>{77U});
    EXPECT_TRUE(folder.names().empty());
}

} // namespace
