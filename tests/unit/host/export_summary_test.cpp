// Tests of the summary of a grab.
#include "export/export_summary.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using kxhost::FrameCause;
using kxhost::FrameLedger;
using kxhost::GrabSummary;

/// The history that the numbers of the example come from.
void fill(FrameLedger& ledger)
{
    std::uint32_t counter = 0;
    const auto lose = [&](unsigned count, FrameCause cause) {
        while (count-- > 0) {
            ledger.lost(counter++, cause);
        }
    };
    ledger.captureStarted();
    lose(1, FrameCause::kTiming);
    for (int i = 0; i < 3; ++i) {
        ledger.retrievalFailed();
    }
    counter += 5; // two more than failed
    lose(5, FrameCause::kUnusable);
    lose(7, FrameCause::kQueueFull);
    for (int i = 0; i < 85; ++i) {
        ledger.delivered(counter++);
    }
    lose(3, FrameCause::kExportFailed);
    for (std::uint32_t i = 1; i <= 4; ++i) {
        ledger.notWritten(counter - 3 - i);
    }
}

GrabSummary example()
{
    GrabSummary summary;
    summary.exitCode = 0;
    summary.reason = "the configured number of frames was reached";
    summary.folder = "out";
    summary.passes = 1;
    summary.retrieved = 101;
    summary.missing = 3;
    summary.timing = 1;
    summary.refused = 5;
    summary.exported.accepted = 85;
    summary.exported.written = 81;
    summary.exported.failed = 4;
    summary.exported.refusedFull = 7;
    summary.exported.refusedFailed = 3;
    summary.exported.pictures = 81;
    summary.exported.bytes = 1500000;
    summary.seconds = 4;
    summary.framePeriodUs = 40000;
    fill(summary.ledger);
    return summary;
}

TEST(ExportSummary, LossesAddUpWhereverTheyHappened)
{
    EXPECT_EQ(kxhost::lostFrames(example()), 3U + 2U + 5U + 7U + 3U + 4U);
}

TEST(ExportSummary, JsonSaysWhereFramesWereLost)
{
    const auto json = nlohmann::json::parse(kxhost::summaryJson(example()));
    EXPECT_EQ(json["exit_code"], 0);
    EXPECT_EQ(json["reason"], "the configured number of frames was reached");
    EXPECT_EQ(json["retrieved"], 101);
    EXPECT_EQ(json["exported"]["written"], 81);
    EXPECT_EQ(json["exported"]["bytes"], 1500000);
    EXPECT_EQ(json["lost"]["total"], 24);
    EXPECT_EQ(json["lost"]["camera"], 5);
    EXPECT_EQ(json["lost"]["queue_full"], 7);
    EXPECT_EQ(json["lost"]["after_export_error"], 3);
    EXPECT_EQ(json["lost"]["refused"], 5);
    EXPECT_EQ(json["lost"]["no_buffer"], 0);
    EXPECT_EQ(json["lost"]["detached"], 0);
    EXPECT_EQ(json["lost"]["unfinished"], 0);
    EXPECT_EQ(json["ledger"]["values"], 106);
    EXPECT_EQ(json["ledger"]["delivered"], 81);
    EXPECT_EQ(json["ledger"]["imbalance"], 0);
    EXPECT_TRUE(json["configurations"].empty());
    EXPECT_EQ(json["lost"]["export"], 4);
    EXPECT_DOUBLE_EQ(json["frame_rate"], 25.0);
    EXPECT_DOUBLE_EQ(json["write_rate"], 81 / 4.0);
}

TEST(ExportSummary, AGrabWithoutFramesHasNoRate)
{
    const auto json = nlohmann::json::parse(kxhost::summaryJson(GrabSummary{}));
    EXPECT_EQ(json["frame_rate"], 0.0);
    EXPECT_EQ(json["lost"]["total"], 0);
}

TEST(ExportSummary, TextTellsPeopleTheSame)
{
    const std::string text = kxhost::summaryText(example());
    EXPECT_NE(text.find("retrieved 101 frames in 4.0 s (25.0 a second), 1 only"), text.npos)
        << text;
    EXPECT_NE(text.find("exported  81 frames, 81 pictures, 1.5 MB into out"), text.npos) << text;
    EXPECT_NE(text.find("lost      24 (camera 5, queue full 7, refused 5, export 7)"), text.npos)
        << text;
    EXPECT_NE(text.find("period of 40000 us"), text.npos) << text;
    EXPECT_NE(text.find("ledger    106 values of the camera's counter = 81 delivered + 1 timing + "
                        "2 camera skipped + 3 retrieval failed + 7 queue full + 5 unusable + "
                        "7 export failed\n"),
              text.npos)
        << text;
}

TEST(ExportSummary, TextNamesRareLossesWhenThereAreSome)
{
    GrabSummary summary;
    summary.ledger.delivered(1);
    summary.ledger.heldUp(2);
    summary.ledger.delivered(4);
    summary.ledger.lost(5, FrameCause::kUnfinished);
    const std::string text = kxhost::summaryText(summary);
    EXPECT_NE(text.find("lost      3 (camera 0, queue full 0, refused 0, export 0, no buffer 2, "
                        "unfinished 1)\n"),
              text.npos)
        << text;
}

TEST(ExportSummary, SaysWhichWordsWereReceived)
{
    GrabSummary summary = example();
    const auto received = [&] {
        return nlohmann::json::parse(kxhost::summaryJson(summary))["received"].dump();
    };
    const auto line = [&] {
        const std::string text = kxhost::summaryText(summary);
        const std::size_t begin = text.find("received");
        return begin == std::string::npos ? "" : text.substr(begin);
    };
    EXPECT_EQ(received(), R"({"last":null,"words":0})");
    EXPECT_EQ(line(), "");
    summary.received.expected = true;
    EXPECT_EQ(line(), "received  no words\n");
    summary.received = {.expected = false, .count = 1, .frame = 17, .data = 0x1AB, .bits = 10};
    EXPECT_EQ(received(), R"({"last":{"number":17,"rx_bits":10,"rx_data":427},"words":1})");
    EXPECT_EQ(line(), "received  1 word, 0x1AB (10 bits) with frame 17\n");
    summary.received.count = 3;
    EXPECT_EQ(line(), "received  3 words, the last 0x1AB (10 bits) with frame 17\n");
}

TEST(ExportSummary, GoesToAFileWhole)
{
    const kxtest::TemporaryFolder folder;
    EXPECT_EQ(kxhost::writeSummary(example(), folder.file("s.json")), "");
    EXPECT_EQ(kxtest::readText(folder.file("s.json")), kxhost::summaryJson(example()));
    EXPECT_EQ(kxhost::writeSummary(example(), folder.file("no/s.json")),
              "Cannot write " + folder.file("no/s.json") + ": No such file or directory.");
}

} // namespace
