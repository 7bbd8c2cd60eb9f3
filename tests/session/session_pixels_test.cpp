// Pixels of exported pictures against what the simulated sensor saw, for every format.
#include "grab_session.h"
#include "ground_truth.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

using kxtest::busWith;
using kxtest::Bytes;
using kxtest::expectPicture;
using kxtest::GrabSession;
using kxtest::TestSensor;
using Json = nlohmann::json;

TestSensor colourSensor(const std::string& tile)
{
    TestSensor sensor;
    sensor.tile = tile;
    return sensor;
}

struct FormatCase {
    const char* name;
    const char* pixelFormat; ///< word of the configuration
    const char* codec;       ///< that must be published
    TestSensor sensor;
};

void PrintTo(const FormatCase& each, std::ostream* out)
{
    *out << each.name;
}

const std::vector<FormatCase>& formatCases()
{
    static const std::vector<FormatCase> kCases = {
        {"Mono8", "mono8", "MONO8T", TestSensor()},
        {"Mono12Packed", "mono12_packed", "MONO12PT", TestSensor()},
        {"Mono12", "mono12", "MONO12T", TestSensor()},
        {"Yuv411", "yuv411", "YUV411T", colourSensor("RGGB")},
        {"Yuv422", "yuv422", "UYVY", colourSensor("RGGB")},
        {"BayerRggb", "bayer8", "BayerRG8T", colourSensor("RGGB")},
        {"BayerGrbg", "bayer8", "BayerGR8T", colourSensor("GRBG")},
        {"BayerGbrg", "bayer8", "BayerGB8T", colourSensor("GBRG")},
        {"BayerBggr", "bayer8", "BayerBG8T", colourSensor("BGGR")},
    };
    return kCases;
}

/// Runs a grab that must go well and lose nothing, and returns its metadata.
std::vector<Json> grabbed(GrabSession& session)
{
    const kxtest::Finished finished = session.run();
    EXPECT_EQ(finished.code, 0) << finished.err << finished.out;
    kxtest::expectBalance(session);
    std::vector<Json> frames = session.frames();
    EXPECT_EQ(frames.size(), 5U);
    for (std::size_t i = 1; i < frames.size(); ++i) {
        EXPECT_EQ(frames[i]["frame_counter"], frames[i - 1]["frame_counter"].get<int>() + 1);
    }
    return frames;
}

class Formats : public testing::TestWithParam<FormatCase> {
protected:
    Formats()
    {
        session_.bus = busWith(GetParam().sensor);
        session_.set("format.pixel_format=" + std::string(GetParam().pixelFormat));
    }
    GrabSession session_;
};

TEST_P(Formats, PngHoldsWhatTheSensorSaw)
{
    for (const Json& frame : grabbed(session_)) {
        ASSERT_EQ(frame["codec"], GetParam().codec);
        const Bytes truth = kxtest::truePixels(GetParam().sensor, frame);
        const auto expected = kxtest::expectedPicture(GetParam().codec, 64, 48, truth);
        expectPicture(kxtest::readPng(session_.output(frame["pictures"][0]["file"])), expected, 64,
                      48);
    }
}

TEST_P(Formats, RawFilesHoldTheBytesOfTheRegion)
{
    session_.set("output.format=raw");
    session_.set("region.width=32");
    session_.set("region.height=16");
    session_.set("region.offset_x=16");
    session_.set("region.offset_y=8");
    for (const Json& frame : grabbed(session_)) {
        ASSERT_EQ(frame["width"], 32);
        ASSERT_EQ(frame["height"], 16);
        const Bytes truth = kxtest::truePixels(GetParam().sensor, frame, {16, 8});
        const std::string file = kxtest::readText(session_.output(frame["pictures"][0]["file"]));
        ASSERT_EQ(Bytes(file.begin(), file.end()), truth);
    }
}

INSTANTIATE_TEST_SUITE_P(Session, Formats, testing::ValuesIn(formatCases()),
                         [](const auto& each) { return std::string(each.param.name); });

TEST(SessionPixels, TiffHoldsAllTwelveBits)
{
    GrabSession session;
    session.set("format.pixel_format=mono12_packed");
    session.set("output.format=tiff");
    for (const Json& frame : grabbed(session)) {
        const Bytes truth = kxtest::truePixels(TestSensor(), frame);
        expectPicture(kxtest::readTiff(session.output(frame["pictures"][0]["file"])),
                      kxtest::expectedPicture("MONO12PT", 64, 48, truth), 64, 48);
    }
}

TEST(SessionPixels, AMosaicIsKeptWhenAskedFor)
{
    GrabSession session;
    const TestSensor sensor = colourSensor("GBRG");
    session.bus = busWith(sensor);
    session.set("format.pixel_format=bayer8");
    session.set("output.bayer=mosaic");
    for (const Json& frame : grabbed(session)) {
        const Bytes truth = kxtest::truePixels(sensor, frame);
        expectPicture(kxtest::readPng(session.output(frame["pictures"][0]["file"])),
                      kxtest::expectedPicture("MONO8T", 64, 48, truth), 64, 48);
    }
}

TEST(SessionPixels, AConversionBringsBothPictures)
{
    GrabSession session;
    session.set("format.pixel_format=mono12");
    session.set("format.convert_to=mono8");
    for (const Json& frame : grabbed(session)) {
        ASSERT_EQ(frame["pictures"].size(), 2U);
        const Json& raw = frame["pictures"][0];
        const Json& converted = frame["pictures"][1];
        EXPECT_EQ(raw["codec"], "MONO12T");
        EXPECT_EQ(converted["codec"], "MONO8T");
        const Bytes truth = kxtest::truePixels(TestSensor(), frame);
        expectPicture(kxtest::readPng(session.output(raw["file"])),
                      kxtest::expectedPicture("MONO12T", 64, 48, truth), 64, 48);
        Bytes high;
        for (std::size_t i = 1; i < truth.size(); i += 2) {
            high.push_back(truth[i]);
        }
        expectPicture(kxtest::readPng(session.output(converted["file"])),
                      kxtest::expectedPicture("MONO8T", 64, 48, high), 64, 48);
    }
}

TEST(SessionPixels, AConversionFromColourToGreyHasTheRightSize)
{
    GrabSession session;
    const TestSensor sensor = colourSensor("RGGB");
    session.bus = busWith(sensor);
    session.set("format.pixel_format=yuv422");
    session.set("format.convert_to=mono8");
    for (const Json& frame : grabbed(session)) {
        // The grey of a YUV pixel is its Y.
        const Bytes truth = kxtest::truePixels(sensor, frame);
        Bytes luma;
        for (std::size_t i = 1; i < truth.size(); i += 2) {
            luma.push_back(truth[i]);
        }
        expectPicture(kxtest::readPng(session.output(frame["pictures"][1]["file"])),
                      kxtest::expectedPicture("MONO8T", 64, 48, luma), 64, 48);
    }
}

} // namespace
