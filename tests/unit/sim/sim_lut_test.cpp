// Look-up tables of simulated cameras: banks, what is refused, and when a change reaches frames.
#include "sim_fixture.h"

#include <vector>

using namespace FlyCapture2;

namespace {

class SimLut : public SimTest {};

TEST_F(SimLut, BanksHoldTheStraightLineAndCanBeWritten)
{
    connect("[camera.lut]\nentries = 512\ninput_bits = 9\noutput_bits = 9\n");
    for (const unsigned bank : {0U, 1U}) {
        std::vector<unsigned> table(512);
        ASSERT_EQ(camera.GetLUTChannel(bank, 0, 512, table.data()).GetType(), PGRERROR_OK);
        EXPECT_EQ(table[0], 0U);
        EXPECT_EQ(table[300], 300U);
        bool readable = false;
        bool writable = false;
        ASSERT_EQ(camera.GetLUTBankInfo(bank, &readable, &writable).GetType(), PGRERROR_OK);
        EXPECT_TRUE(readable);
        EXPECT_TRUE(writable);
    }
}

TEST_F(SimLut, BanksKeepWhatIsWrittenApart)
{
    connect();
    const std::vector<unsigned> zeroth(512, 7);
    std::vector<unsigned> first(512, 9);
    ASSERT_EQ(camera.SetLUTChannel(0, 0, 512, zeroth.data()).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.SetLUTChannel(1, 0, 512, first.data()).GetType(), PGRERROR_OK);
    std::vector<unsigned> back(512);
    ASSERT_EQ(camera.GetLUTChannel(0, 0, 512, back.data()).GetType(), PGRERROR_OK);
    EXPECT_EQ(back, zeroth);
    ASSERT_EQ(camera.GetLUTChannel(1, 0, 512, back.data()).GetType(), PGRERROR_OK);
    EXPECT_EQ(back, first);
}

TEST_F(SimLut, ColourHasThreeChannels)
{
    LUTData data;
    connect();
    ASSERT_EQ(camera.GetLUTInfo(&data).GetType(), PGRERROR_OK);
    EXPECT_EQ(data.numChannels, 1U);
    std::string colour = cameraToml("");
    const std::string sensor = "[camera.sensor]\n";
    colour.insert(colour.find(sensor) + sensor.size(), "colour = true\n");
    ASSERT_EQ(camera.Disconnect().GetType(), PGRERROR_OK);
    ASSERT_EQ(fcsim::loadBus(colour, "test.toml"), "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.GetLUTInfo(&data).GetType(), PGRERROR_OK);
    EXPECT_EQ(data.numChannels, 3U);
}

TEST_F(SimLut, TakesTheLargestValueForALargerOne)
{
    connect();
    std::vector<unsigned> table(512, 7);
    table[5] = 511;
    table[6] = 512;
    ASSERT_EQ(camera.SetLUTChannel(1, 0, 512, table.data()).GetType(), PGRERROR_OK);
    std::vector<unsigned> back(512);
    ASSERT_EQ(camera.GetLUTChannel(1, 0, 512, back.data()).GetType(), PGRERROR_OK);
    EXPECT_EQ(back[4], 7U);
    EXPECT_EQ(back[5], 511U);
    EXPECT_EQ(back[6], 511U);
}

TEST_F(SimLut, IsSwitchedOnAndToAnotherBank)
{
    connect();
    EXPECT_EQ(camera.SetActiveLUTBank(2).GetType(), PGRERROR_LUT_FAILED);
    EXPECT_EQ(camera.SetActiveLUTBank(1).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.EnableLUT(true).GetType(), PGRERROR_OK);
    LUTData data;
    ASSERT_EQ(camera.GetLUTInfo(&data).GetType(), PGRERROR_OK);
    EXPECT_TRUE(data.enabled);
    EXPECT_EQ(data.numBanks, 2U);
}

TEST_F(SimLut, ACameraMayLackIt)
{
    connect("[camera.lut]\nsupported = false\n");
    LUTData data;
    ASSERT_EQ(camera.GetLUTInfo(&data).GetType(), PGRERROR_OK);
    EXPECT_FALSE(data.supported);
    EXPECT_EQ(camera.EnableLUT(true).GetType(), PGRERROR_NOT_SUPPORTED);
}

TEST_F(SimLut, FaultsMayHitEachStepOfAnExchange)
{
    connect();
    LUTData data;
    fcsim::addFault({.operation = "GetLUTInfo", .count = 2});
    EXPECT_EQ(camera.GetLUTInfo(&data).GetType(), PGRERROR_FAILED);
    EXPECT_EQ(camera.GetLUTInfo(&data).GetType(), PGRERROR_FAILED);
    EXPECT_EQ(camera.GetLUTInfo(&data).GetType(), PGRERROR_OK);
    fcsim::addFault({.operation = "EnableLUT", .detail = "off"});
    EXPECT_EQ(camera.EnableLUT(true).GetType(), PGRERROR_OK);
    EXPECT_EQ(camera.EnableLUT(false).GetType(), PGRERROR_FAILED);
    ASSERT_EQ(camera.GetLUTInfo(&data).GetType(), PGRERROR_OK);
    EXPECT_TRUE(data.enabled);
    EXPECT_EQ(camera.EnableLUT(false).GetType(), PGRERROR_OK);
    fcsim::addFault({.operation = "SetActiveLUTBank", .detail = "1"});
    EXPECT_EQ(camera.SetActiveLUTBank(1).GetType(), PGRERROR_FAILED);
    unsigned bank = 9;
    ASSERT_EQ(camera.GetActiveLUTBank(&bank).GetType(), PGRERROR_OK);
    EXPECT_EQ(bank, 0U);
    const std::vector<unsigned> table(512);
    fcsim::addFault({.operation = "SetLUTChannel", .detail = "bank=1 channel=0"});
    EXPECT_EQ(camera.SetLUTChannel(1, 0, 512, table.data()).GetType(), PGRERROR_FAILED);
    EXPECT_EQ(camera.SetLUTChannel(1, 0, 512, table.data()).GetType(), PGRERROR_OK);
}

} // namespace
