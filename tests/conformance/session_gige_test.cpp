// Session of a GigE camera: the stream channel is adjusted through a connection of its own.
#include "kx_pg_proc.h"
#include "plugin_test.h"

using kxtest::CameraText;
using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class SessionGigeTest : public kxtest::PluginTest {
protected:
    SessionGigeTest() { host().config.fnum = 1; }

    static void plugInGige(unsigned packetSize, unsigned packetDelay, bool doNotFragment = true,
                           unsigned channels = 1)
    {
        CameraText camera;
        camera.interface = "gige";
        camera.extra = format("stream = { channels = %u, packet_size = %u, packet_delay = %u, "
                              "do_not_fragment = %s }",
                              channels, packetSize, packetDelay, doNotFragment ? "true" : "false");
        plugIn({camera});
    }
    static std::vector<std::string> channelLines() { return journal().logsWith("packetDelay"); }
    static std::vector<std::string> gigeCalls()
    {
        return journal().lines([](const kxtest::Event& event) {
            return event.name.starts_with("GigECamera.") || event.name == "Camera.Connect" ||
                   event.name == "Camera.Disconnect";
        });
    }
};

TEST_F(SessionGigeTest, AdjustsTheStreamChannel)
{
    plugInGige(1400, 400);
    host().config.datachunk = 9000;
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(channelLines(),
                ElementsAre(info("Current packetDelay 400, packetSize 1400, IPfragmentation 0"),
                            info("New packetDelay 10, packetSize 9000, IPfragmentation 0")));
    EXPECT_THAT(gigeCalls(), ElementsAre(HasSubstr("Camera.Connect"), "Camera.Disconnect()",
                                         HasSubstr("GigECamera.Connect"),
                                         HasSubstr("GigECamera.GetNumStreamChannels"),
                                         HasSubstr("GigECamera.GetGigEStreamChannelInfo(0"),
                                         HasSubstr("GigECamera.SetGigEStreamChannelInfo(0"),
                                         HasSubstr("GigECamera.GetGigEStreamChannelInfo(0"),
                                         HasSubstr("GigECamera.Disconnect"),
                                         HasSubstr("Camera.Connect"), "Camera.Disconnect()"));
    EXPECT_THAT(journal().logs(), Contains(info("KxPgProc entry: if=0")));
}

TEST_F(SessionGigeTest, ReportsFragmentationInverted)
{
    plugInGige(1400, 400, false);
    run();
    EXPECT_THAT(channelLines(),
                ElementsAre(HasSubstr("IPfragmentation 1"), HasSubstr("IPfragmentation 1")));
}

struct PacketSize {
    unsigned datachunk;
    unsigned used;
};

class SessionPacketSizeTest : public SessionGigeTest,
                              public testing::WithParamInterface<PacketSize> {};

TEST_P(SessionPacketSizeTest, IsTakenFromOneTo9000)
{
    plugInGige(1400, 10);
    host().config.datachunk = GetParam().datachunk;
    run();
    EXPECT_THAT(journal().lines({"GigECamera.SetGigEStreamChannelInfo"}), SizeIs(1));
    EXPECT_THAT(channelLines(),
                Contains(info(format("New packetDelay 10, packetSize %u, IPfragmentation 0",
                                     GetParam().used))));
}

INSTANTIATE_TEST_SUITE_P(SessionGige, SessionPacketSizeTest,
                         testing::Values(PacketSize{0, 1500}, PacketSize{9000, 9000},
                                         PacketSize{9001, 1500}, PacketSize{0xFFFFFFFF, 1500},
                                         PacketSize{1399, 1399}),
                         [](const auto& one) {
                             return format("Datachunk%u", one.param.datachunk);
                         });

TEST_F(SessionGigeTest, WritesNothingWhenAllIsAsWanted)
{
    plugInGige(1500, 10);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(journal().count("GigECamera.SetGigEStreamChannelInfo"), 0U);
    EXPECT_THAT(channelLines(),
                ElementsAre(info("Current packetDelay 10, packetSize 1500, IPfragmentation 0")));
}

TEST_F(SessionGigeTest, WritesWhenOnlyTheDelayDiffers)
{
    plugInGige(1500, 11);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(journal().count("GigECamera.SetGigEStreamChannelInfo"), 1U);
}

struct ChannelFailure {
    const char* name;
    const char* operation; ///< null: there is no channel
    unsigned skip;
    std::size_t lines;
    const char* notReached; ///< call that does not follow
};

class SessionChannelFailureTest : public SessionGigeTest,
                                  public testing::WithParamInterface<ChannelFailure> {};

TEST_P(SessionChannelFailureTest, SkipsTheAdjustmentSilently)
{
    const bool noChannel = GetParam().operation == nullptr;
    plugInGige(1400, 400, true, noChannel ? 0 : 1);
    if (!noChannel) {
        failCalls(GetParam().operation, GetParam().skip);
    }
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(channelLines(), SizeIs(GetParam().lines));
    EXPECT_EQ(journal().count(GetParam().notReached), 0U);
    EXPECT_THAT(journal().logsWith("[w|"), IsEmpty());
    EXPECT_THAT(journal().logsWith("[e|"), IsEmpty());
    // Connected again all the same.
    EXPECT_EQ(journal().count("GigECamera.Disconnect"), 1U);
    EXPECT_EQ(journal().count("Camera.Connect"), 2U);
}

INSTANTIATE_TEST_SUITE_P(SessionGige, SessionChannelFailureTest,
                         testing::Values(ChannelFailure{"Connection", "Connect", 1, 0,
                                                        "GigECamera.GetNumStreamChannels"},
                                         ChannelFailure{"Count", "GetNumStreamChannels", 0, 0,
                                                        "GigECamera.GetGigEStreamChannelInfo"},
                                         ChannelFailure{"NoChannel", nullptr, 0, 0,
                                                        "GigECamera.GetGigEStreamChannelInfo"},
                                         ChannelFailure{"Reading", "GetGigEStreamChannelInfo", 0, 0,
                                                        "GigECamera.SetGigEStreamChannelInfo"},
                                         ChannelFailure{"ReadingBack", "GetGigEStreamChannelInfo",
                                                        1, 1, "none"}),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(SessionGigeTest, ReadsBackAfterARefusedWrite)
{
    plugInGige(1400, 400);
    failCalls("SetGigEStreamChannelInfo");
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(channelLines(),
                Contains(info("New packetDelay 400, packetSize 1400, IPfragmentation 0")));
}

TEST_F(SessionGigeTest, EndsWhenTheCameraCannotBeConnectedAgain)
{
    plugInGige(1400, 400);
    failCalls("Connect", 2);
    EXPECT_EQ(run(), -1);
    EXPECT_THAT(journal().logsWith("Can't connect to camera"),
                ElementsAre(testing::MatchesRegex("3 \\[e\\|.*kx_pg_proc.*\\.cpp:[0-9]+\\] "
                                                  "Can't connect to camera")));
    EXPECT_THAT(journal().logsWith("scenario is completed"), IsEmpty());
    EXPECT_THAT(journal().logsWith("Using device"), IsEmpty());
    EXPECT_EQ(journal().count("KxGiMainCtx__GetFnum"), 0U);
}

TEST_F(SessionGigeTest, LeavesAUsbCameraConnected)
{
    CameraText camera;
    camera.model = "Usb One";
    camera.serial = 77;
    plugIn({camera});
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(gigeCalls(), ElementsAre(HasSubstr("Camera.Connect"), "Camera.Disconnect()"));
    EXPECT_EQ(journal().count("KxGiMainCtx__GetDatachunk"), 0U);
    EXPECT_THAT(journal().logs(), Contains(info("KxPgProc entry: if=1")));
    EXPECT_THAT(journal().logs(), Contains(info("Using device Model:Usb One Serial:77")));
    EXPECT_THAT(journal().logs(), Contains(info("scenario is completed (rc = 0)")));
}

TEST_F(SessionGigeTest, PassesTheResultOfTheGrabOn)
{
    CameraText camera;
    plugIn({camera});
    failCalls("SetConfiguration");
    EXPECT_EQ(run(), -2);
    EXPECT_THAT(journal().logs(), Contains(info("scenario is completed (rc = -2)")));
    EXPECT_THAT(journal().logs(), Contains(info("Loop completed (exitCode = -2)")));
}

} // namespace
