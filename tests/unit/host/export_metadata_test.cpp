// Tests of a frame's metadata line.
#include "export/export_metadata.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using kxhost::FrameInfo;
using kxhost::Instance;
using kxhost::metadataLine;
using kxhost::PictureRecord;
using kxhost::ScenarioValues;

TEST(ExportMetadata, HoldsEveryScenarioParameter)
{
    ScenarioValues values;
    values.width = 640;
    values.height = 480;
    values.codec = "MONO8T";
    values.gainDb = 5.3F;
    values.exposureUs = 9999.5F;
    values.unit = 1000;
    values.cameraTimeUs = 127999968;
    values.frameCounter = 7;
    values.timestampUs = 1700000000123456;
    values.rxData = 0xFFFFFFFF;
    values.rxBits = 12;
    values.configuration = 2;
    values.awaySeconds = 2.5F;
    values.configurationNext = 3;
    kxhost::ConfigHistory history;
    history.start({{"acquisition.gain", "5.3 dB"}}, 9);
    values.changes = history.takeNews();
    values.ledger.stretch = 4;
    values.ledger.lostBefore[kxhost::FrameCause::kQueueFull] = 1;
    EXPECT_EQ(
        metadataLine(3, values, {}),
        R"({"number":3,"timestamp_us":1700000000123456,"camera_time_us":127999968,)"
        R"("frame_counter":7,"stretch":4,"width":640,"height":480,"codec":"MONO8T","gain_db":5.3,)"
        R"("exposure_us":9999.5,"unit":1000,"rx_data":4294967295,"rx_bits":12,)"
        R"("configuration":2,"configuration_next":3,"configuration_changes":[{"number":1,)"
        R"("kind":"start","at_us":9,"changed":{"acquisition.gain":"5.3 dB"}}],)"
        R"("lost_before":{"queue_full":1},"camera_away_s":2.5,"pictures":[]})"
        "\n");
}

TEST(ExportMetadata, WhatWasNotPublishedIsAbsent)
{
    EXPECT_EQ(metadataLine(1, {}, {}), "{\"number\":1,\"pictures\":[]}\n");
}

TEST(ExportMetadata, DescribesEachPicture)
{
    const FrameInfo raw{Instance::kRaw, 64, 32, "BayerRG8T", 1};
    const FrameInfo converted{Instance::kConverted, 64, 32, "UYVY", 1};
    const std::vector<PictureRecord> records = {{raw, "a.png", 123},
                                                {converted, "a_converted.png", 456}};
    const auto line = nlohmann::json::parse(metadataLine(1, {}, records));
    ASSERT_EQ(line["pictures"].size(), 2U);
    EXPECT_EQ(line["pictures"][0], nlohmann::json::parse(R"({"instance":"raw","file":"a.png",
        "bytes":123,"codec":"BayerRG8T","width":64,"height":32})"));
    EXPECT_EQ(line["pictures"][1]["instance"], "converted");
    EXPECT_EQ(line["pictures"][1]["codec"], "UYVY");
}

TEST(ExportMetadata, APictureWithoutFileNamesNone)
{
    const std::vector<PictureRecord> records = {{FrameInfo{}, "", 0}};
    const auto line = nlohmann::json::parse(metadataLine(1, {}, records));
    EXPECT_FALSE(line["pictures"][0].contains("file"));
    EXPECT_FALSE(line["pictures"][0].contains("bytes"));
}

TEST(ExportMetadata, IsOneLineWhateverTheTextHolds)
{
    ScenarioValues values;
    values.codec = "a\nb\"\xFF";
    const std::string line = metadataLine(1, values, {});
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    EXPECT_TRUE(nlohmann::json::accept(line));
}

} // namespace
