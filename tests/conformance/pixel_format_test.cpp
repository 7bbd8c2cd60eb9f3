// Pixel format: what each of the host's format codes becomes, fallbacks, and the Bayer tile.
#include "camera_test.h"
#include "kx_scenario.h"

using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr unsigned kAll = 0xFFFFFFFF;
constexpr unsigned kBayerTileRegister = 0x1040;

class PixelFormatTest : public kxtest::CameraTest {
protected:
    int set(unsigned char code, unsigned supported = kAll)
    {
        code_ = code;
        return proc_->ProcSetPixelFormat(supported, &settings_, cam_.get(), &code_, &strideBits_,
                                         &dataBits_, &pixelFormat_, &codec_);
    }
    int setWithoutSettings(unsigned char code)
    {
        code_ = code;
        return proc_->ProcSetPixelFormat(0, nullptr, cam_.get(), &code_, &strideBits_, &dataBits_,
                                         &pixelFormat_, &codec_);
    }
    static std::string publishedCodec()
    {
        const auto found = host().published.find(kKxScCodec);
        return found == host().published.end() ? "" : static_cast<const char*>(found->second);
    }

    FlyCapture2::Format7ImageSettings settings_;
    unsigned char code_ = 0;
    unsigned char strideBits_ = 99;
    unsigned char dataBits_ = 99;
    FlyCapture2::PixelFormat pixelFormat_ = FlyCapture2::UNSPECIFIED_PIXEL_FORMAT;
    const char* codec_ = nullptr;
};

struct Format {
    unsigned char code;
    const char* name;
    unsigned value;
    unsigned char strideBits;
    unsigned char dataBits;
    bool isColor;
    const char* codec;
};

class PixelFormatTableTest : public PixelFormatTest, public testing::WithParamInterface<Format> {
protected:
    void expectOutputs() const
    {
        const Format& wanted = GetParam();
        EXPECT_EQ(code_, wanted.code);
        EXPECT_EQ(strideBits_, wanted.strideBits);
        EXPECT_EQ(dataBits_, wanted.dataBits);
        EXPECT_EQ(static_cast<unsigned>(pixelFormat_), wanted.value);
        EXPECT_STREQ(codec_, wanted.codec);
    }
};

TEST_P(PixelFormatTableTest, WithSettings)
{
    proc_->isColor = !GetParam().isColor;
    EXPECT_EQ(set(GetParam().code, GetParam().value), 0);
    expectOutputs();
    EXPECT_EQ(proc_->isColor, GetParam().isColor);
    EXPECT_EQ(static_cast<unsigned>(settings_.pixelFormat), GetParam().value);
    EXPECT_EQ(publishedCodec(), GetParam().codec);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info(format("Configure pixel format: 0x%08X", GetParam().value))));
}

TEST_P(PixelFormatTableTest, WithoutSettingsWhateverTheCameraOffers)
{
    proc_->isColor = !GetParam().isColor;
    EXPECT_EQ(setWithoutSettings(GetParam().code), 0);
    expectOutputs();
    EXPECT_EQ(proc_->isColor, !GetParam().isColor);
    EXPECT_THAT(journal().logs(),
                ElementsAre(info(format("Use pixel format: '%s'", GetParam().name))));
    EXPECT_EQ(publishedCodec(), "");
}

TEST_P(PixelFormatTableTest, WritesOnlyWhatIsAskedFor)
{
    unsigned char code = GetParam().code;
    EXPECT_EQ(proc_->ProcSetPixelFormat(kAll, &settings_, nullptr, &code, nullptr, nullptr, nullptr,
                                        nullptr),
              0);
    EXPECT_EQ(static_cast<unsigned>(settings_.pixelFormat), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(PixelFormat, PixelFormatTableTest,
                         testing::Values(Format{1, "MONO8T", 0x80000000, 8, 8, false, "MONO8T"},
                                         Format{2, "MONO12PT", 0x00100000, 12, 12, false,
                                                "MONO12PT"},
                                         Format{3, "MONO12T", 0x04000000, 16, 12, false, "MONO12T"},
                                         Format{4, "YUV411PT", 0x40000000, 12, 12, true, "YUV411T"},
                                         Format{5, "YUV422PT", 0x20000000, 16, 16, true, "UYVY"}),
                         [](const auto& one) { return std::string(one.param.name); });

class PixelFormatFallbackTest : public PixelFormatTest,
                                public testing::WithParamInterface<Format> {};

TEST_P(PixelFormatFallbackTest, IsMonoOfEightBits)
{
    EXPECT_EQ(set(GetParam().code, kAll & ~GetParam().value), 0);
    EXPECT_EQ(code_, 1);
    EXPECT_EQ(strideBits_, 8);
    EXPECT_EQ(dataBits_, 8);
    EXPECT_EQ(pixelFormat_, FlyCapture2::PIXEL_FORMAT_MONO8);
    EXPECT_FALSE(proc_->isColor);
    EXPECT_EQ(publishedCodec(), "MONO8T");
    EXPECT_THAT(journal().logs(),
                ElementsAre(warning("ProcSetPixelFormat",
                                    format("The pixel format '%s' is not supported, forced to "
                                           "'MONO8T'",
                                           GetParam().name)),
                            info("Configure pixel format: 0x80000000")));
}

TEST_P(PixelFormatFallbackTest, FailsWithoutMonoOfEightBits)
{
    EXPECT_EQ(set(GetParam().code, 0), -1);
    EXPECT_EQ(code_, 1);
    EXPECT_EQ(strideBits_, 99);
    EXPECT_EQ(codec_, nullptr);
    EXPECT_EQ(settings_.pixelFormat, FlyCapture2::UNSPECIFIED_PIXEL_FORMAT);
    const auto logs = journal().logs();
    ASSERT_EQ(logs.size(), 2U);
    EXPECT_EQ(logs[1], warning("ProcSetPixelFormat", "The pixel format 'MONO8T' is not supported"));
}

INSTANTIATE_TEST_SUITE_P(PixelFormat, PixelFormatFallbackTest,
                         testing::Values(Format{2, "MONO12PT", 0x00100000, 0, 0, false, ""},
                                         Format{3, "MONO12T", 0x04000000, 0, 0, false, ""},
                                         Format{4, "YUV411PT", 0x40000000, 0, 0, true, ""},
                                         Format{5, "YUV422PT", 0x20000000, 0, 0, true, ""}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(PixelFormatTest, HasNoFallbackForMonoOfEightBits)
{
    EXPECT_EQ(set(1, kAll & ~0x80000000U), -1);
    EXPECT_THAT(
        journal().logs(),
        ElementsAre(warning("ProcSetPixelFormat", "The pixel format 'MONO8T' is not supported")));
}

TEST_F(PixelFormatTest, RefusesOtherCodesSilently)
{
    for (const unsigned char code : std::initializer_list<unsigned char>{0, 6, 7, 8, 10, 255}) {
        EXPECT_EQ(set(code), -1) << int{code};
        EXPECT_EQ(setWithoutSettings(code), -1) << int{code};
    }
    EXPECT_THAT(journal().logs(), IsEmpty());
    EXPECT_THAT(journal().lines(kxtest::Kind::sdk), IsEmpty());
    EXPECT_EQ(strideBits_, 99);
}

struct Tile {
    const char* name;
    unsigned mapping;
    const char* codec;
    bool known;
};

class BayerTileTest : public PixelFormatTest, public testing::WithParamInterface<Tile> {
protected:
    BayerTileTest()
    {
        connect();
        fcsim::pokeRegister(1000, kBayerTileRegister, GetParam().mapping);
    }
    static std::vector<std::string> expectedLogs(const std::string& last)
    {
        std::vector<std::string> lines;
        if (!GetParam().known) {
            lines.push_back(
                warning("ProcSetPixelFormat",
                        format("Can't obtain Bayer format from 0x%08X", GetParam().mapping)));
            lines.push_back(warning("ProcSetPixelFormat", "Forcing pixel format to 'BayerRG8T'"));
        }
        lines.push_back(info(format("BAYER_TILE_MAPPING value: 0x%08X (meta codec chosen '%s')",
                                    GetParam().mapping, GetParam().codec)));
        lines.push_back(last);
        return lines;
    }
};

TEST_P(BayerTileTest, NamesTheCodec)
{
    EXPECT_EQ(set(9, 0x00400000), 0);
    EXPECT_EQ(code_, 9);
    EXPECT_EQ(strideBits_, 8);
    EXPECT_EQ(dataBits_, 8);
    EXPECT_EQ(pixelFormat_, FlyCapture2::PIXEL_FORMAT_RAW8);
    EXPECT_FALSE(proc_->isColor);
    EXPECT_STREQ(codec_, GetParam().codec);
    EXPECT_EQ(publishedCodec(), GetParam().codec);
    EXPECT_EQ(journal().logs(), expectedLogs(info("Configure pixel format: 0x00400000")));
}

TEST_P(BayerTileTest, NamesTheCodecWithoutSettings)
{
    EXPECT_EQ(setWithoutSettings(9), 0);
    EXPECT_STREQ(codec_, GetParam().codec);
    EXPECT_EQ(journal().logs(), expectedLogs(info("Use pixel format: 'Bayer8T'")));
}

TEST_P(BayerTileTest, IsReadBeforeTheFormatIsTested)
{
    EXPECT_EQ(set(9, kAll & ~0x00400000U), -1);
    EXPECT_EQ(code_, 9);
    EXPECT_EQ(
        journal().logs(),
        expectedLogs(warning("ProcSetPixelFormat", "The pixel format 'Bayer8T' is not supported")));
}

INSTANTIATE_TEST_SUITE_P(PixelFormat, BayerTileTest,
                         testing::Values(Tile{"RGGB", 0x52474742, "BayerRG8T", true},
                                         Tile{"GRBG", 0x47524247, "BayerGR8T", true},
                                         Tile{"GBRG", 0x47425247, "BayerGB8T", true},
                                         Tile{"BGGR", 0x42474752, "BayerBG8T", true},
                                         Tile{"Nothing", 0, "BayerRG8T", false},
                                         Tile{"OtherLetters", 0x59595959, "BayerRG8T", false}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(PixelFormatTest, TakesNoTileWithoutACamera)
{
    EXPECT_EQ(setWithoutSettings(9), 0);
    EXPECT_STREQ(codec_, "BayerRG8T");
    EXPECT_THAT(journal().lines(kxtest::Kind::sdk), IsEmpty());
    EXPECT_THAT(
        journal().logs(),
        ElementsAre(warning("ProcSetPixelFormat", "Can't obtain Bayer format from 0x00000000"),
                    warning("ProcSetPixelFormat", "Forcing pixel format to 'BayerRG8T'"),
                    info("BAYER_TILE_MAPPING value: 0x00000000 (meta codec chosen 'BayerRG8T')"),
                    info("Use pixel format: 'Bayer8T'")));
}

TEST_F(PixelFormatTest, TakesNoTileFromAFailedRead)
{
    connect();
    fcsim::pokeRegister(1000, kBayerTileRegister, 0x42474752);
    failCalls("ReadRegister");
    EXPECT_EQ(set(9), 0);
    EXPECT_STREQ(codec_, "BayerRG8T");
}

} // namespace
