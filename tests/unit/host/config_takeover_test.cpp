// Taking a changed configuration over, through the services that the plug-in calls.
#include "grab/config_takeover.h"
#include "grab/services.h"
#include "services/service_exports.h"

#include <gtest/gtest.h>

#include <utility>

namespace kxhost {
namespace {

class ConfigTakeover : public testing::Test {
protected:
    void SetUp() override
    {
        std::destroy_at(&services());
        std::construct_at(&services());
    }
    void TearDown() override { SetUp(); }

    HostServices& host() { return services(); }
    Settings& settings() { return services().settings; }

    static std::unique_ptr<ConfigOffer> offerOf(Settings settings)
    {
        auto offer = std::make_unique<ConfigOffer>();
        offer->settings = std::move(settings);
        offer->file = "camera.toml";
        offer->changed = "some.key";
        return offer;
    }
    void offerLive(const Settings& settings) { host().offers.live.put(offerOf(settings)); }
    void offerReload(const Settings& settings)
    {
        host().offers.reload.put(offerOf(settings));
        host().signals.post(kReload);
    }

    /// What a call of the plug-in's wrote to standard error.
    template <typename Call>
    static std::string said(const Call& call)
    {
        testing::internal::CaptureStderr();
        call();
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(ConfigTakeover, NothingIsOfferedAtFirst)
{
    EXPECT_EQ(KxGi__CheckDynConfig(), 0);
    int restart = 0;
    EXPECT_GT(KxGi__DoReconfig(&restart), 0);
    EXPECT_EQ(restart, 0);
    EXPECT_EQ(host().history.newest(), 1U);
}

TEST_F(ConfigTakeover, ALiveChangeIsInForceOnce)
{
    Settings changed;
    changed.gainDb = 6;
    changed.iobox.resize(1);
    offerLive(changed);
    EXPECT_EQ(said([] { EXPECT_NE(KxGi__CheckDynConfig(), 0); }),
              "kxhost: camera.toml has changed: some.key in force from now on.\n");
    EXPECT_EQ(KxGiMainCtx__GetGainMan(), 6.0F);
    EXPECT_EQ(KxGiMainCtx__GetIoboxNum(), 1U);
    EXPECT_EQ(host().history.newest(), 2U);
    EXPECT_EQ(KxGi__CheckDynConfig(), 0);
    EXPECT_EQ(host().history.newest(), 2U);
}

TEST_F(ConfigTakeover, ALiveChangeLeavesEverythingElseAsItIs)
{
    settings().pixelFormat = 2; // as a pass of 12 bits sets it
    Settings changed;
    changed.gainDb = 6;
    changed.width = 640;
    offerLive(changed);
    EXPECT_NE(KxGi__CheckDynConfig(), 0);
    EXPECT_EQ(KxGiMainCtx__GetFormat(), 2);
    EXPECT_EQ(KxGiMainCtx__GetWidth(), kKeep);
}

TEST_F(ConfigTakeover, AReloadComesBeforeALaterLiveChange)
{
    Settings reloaded;
    reloaded.gainDb = 6;
    offerReload(reloaded);
    Settings live;
    live.gainDb = 9;
    offerLive(live);
    EXPECT_EQ(KxGi__CheckDynConfig(), 0);
    int restart = 0;
    EXPECT_EQ(KxGi__DoReconfig(&restart), 0);
    EXPECT_EQ(KxGiMainCtx__GetGainMan(), 6.0F);
    EXPECT_NE(KxGi__CheckDynConfig(), 0);
    EXPECT_EQ(KxGiMainCtx__GetGainMan(), 9.0F);
}

TEST_F(ConfigTakeover, AReloadWithoutNewGeometryGoesOn)
{
    KxGi__ResetTermSigProc();
    Settings changed;
    changed.frameRate = 20;
    offerReload(changed);
    EXPECT_EQ(KxUtl__CheckSignal(), 2);
    int restart = 0;
    EXPECT_EQ(said([&] { EXPECT_EQ(KxGi__DoReconfig(&restart), 0); }),
              "kxhost: Reloaded camera.toml (some.key): the grab goes on with it.\n");
    EXPECT_EQ(restart, 0);
    EXPECT_EQ(KxGiMainCtx__GetFps(), 20.0F);
    EXPECT_EQ(KxUtl__CheckSignal(), 0);
    EXPECT_EQ(host().history.newest(), 2U);
    EXPECT_FALSE(fallBack(host())) << "the loop went on with it";
}

TEST_F(ConfigTakeover, AReloadWithNewGeometryStartsAgain)
{
    KxGi__ResetTermSigProc();
    Settings changed;
    changed.width = 640;
    offerReload(changed);
    int restart = 0;
    EXPECT_EQ(said([&] { EXPECT_EQ(KxGi__DoReconfig(&restart), 0); }),
              "kxhost: Reloaded camera.toml (some.key): the grab ends and starts again with it.\n");
    EXPECT_NE(restart, 0);
    EXPECT_FALSE(host().startAgain);
    EXPECT_EQ(said([] { KxGi__SetSignalAction(2); }), "") << "that was said";
    EXPECT_TRUE(host().startAgain);
    KxGi__SetTermSigProc();
    EXPECT_EQ(KxGiMainCtx__GetWidth(), 640U);
    KxGi__ResetTermSigProc();
    EXPECT_FALSE(host().startAgain) << "a loop of the same session has done so";
}

TEST_F(ConfigTakeover, ACameraMayNeedANewStartOfItsOwn)
{
    KxGi__ResetTermSigProc();
    offerReload({});
    int restart = 0;
    EXPECT_EQ(KxGi__DoReconfig(&restart), 0);
    EXPECT_EQ(said([] { KxGi__SetSignalAction(2); }),
              "kxhost: The camera cannot go on with it: the grab ends and starts again.\n");
    EXPECT_TRUE(host().startAgain);
}

TEST_F(ConfigTakeover, WhatThePluginFoundAlreadyIsKept)
{
    KxGi__ResetTermSigProc();
    offerReload({});
    int restart = 7;
    EXPECT_EQ(KxGi__DoReconfig(&restart), 0);
    EXPECT_EQ(restart, 7);
}

TEST_F(ConfigTakeover, BetweenTwoLoopsTheNextOneStartsWithIt)
{
    Settings changed;
    changed.width = 640;
    offerReload(changed);
    EXPECT_EQ(KxUtl__CheckSignal(), 2);
    int restart = 0;
    EXPECT_EQ(said([&] { EXPECT_EQ(KxGi__DoReconfig(&restart), 0); }),
              "kxhost: Reloaded camera.toml (some.key): the grab starts with it.\n");
    EXPECT_EQ(KxUtl__CheckSignal(), 0);
    EXPECT_EQ(KxGiMainCtx__GetWidth(), 640U);
}

TEST_F(ConfigTakeover, ARefusedReloadChangesNothing)
{
    settings().gainDb = 3;
    KxGi__ResetTermSigProc();
    host().signals.post(kReload); // the file had an error: nothing is offered
    EXPECT_EQ(KxUtl__CheckSignal(), 2);
    int restart = 0;
    EXPECT_GT(KxGi__DoReconfig(&restart), 0);
    EXPECT_EQ(restart, 0);
    EXPECT_EQ(KxGiMainCtx__GetGainMan(), 3.0F);
    EXPECT_EQ(KxUtl__CheckSignal(), 0) << "the loop goes on";
    EXPECT_EQ(host().history.newest(), 1U);
}

TEST_F(ConfigTakeover, AReloadInAPassOfTwelveBitsBringsItsOwnFormat)
{
    settings().pixelFormat = 9;
    KxGiMainCtx__SetFormat(2);
    KxGi__ResetTermSigProc();
    Settings changed;
    changed.pixelFormat = 9;
    offerReload(changed);
    int restart = 0;
    EXPECT_EQ(KxGi__DoReconfig(&restart), 0);
    EXPECT_NE(restart, 0) << "the camera sends 12 bits";
    EXPECT_EQ(KxGiMainCtx__GetFormat(), 9);
    KxGiMainCtx__SetFormat(1); // the pass ends after all
    EXPECT_EQ(KxGiMainCtx__GetFormat(), 9) << "as the configuration says";
}

TEST_F(ConfigTakeover, ARefusedReloadInAPassOfTwelveBitsBringsBackTheFormatBeforeThePass)
{
    settings().pixelFormat = 9;
    KxGiMainCtx__SetFormat(2);
    KxGi__ResetTermSigProc();
    Settings changed;
    changed.pixelFormat = 4;
    offerReload(changed);
    int restart = 0;
    EXPECT_EQ(KxGi__DoReconfig(&restart), 0);
    EXPECT_TRUE(fallBack(host()));
    EXPECT_EQ(KxGiMainCtx__GetFormat(), 9);
    KxGiMainCtx__SetFormat(1);
    EXPECT_EQ(KxGiMainCtx__GetFormat(), 9);
}

TEST_F(ConfigTakeover, ACameraThatRefusesItGetsTheOneBefore)
{
    settings().lut.assign(kLutEntries, 5);
    const std::uint16_t* const table = KxGiMainCtx__GetLutDataU16();
    KxGi__ResetTermSigProc();
    Settings changed;
    changed.width = 640;
    offerReload(changed);
    int restart = 0;
    EXPECT_EQ(KxGi__DoReconfig(&restart), 0);
    KxGi__SetTermSigProc();
    EXPECT_EQ(said([&] { EXPECT_TRUE(fallBack(host())); }),
              "kxhost: The camera refused the new configuration: the grab goes on with the one "
              "before.\n");
    EXPECT_EQ(KxGiMainCtx__GetWidth(), kKeep);
    EXPECT_EQ(KxGiMainCtx__GetLutDataU16(), table);
    EXPECT_EQ(host().history.newest(), 3U);
    EXPECT_FALSE(fallBack(host())) << "once";
}

TEST_F(ConfigTakeover, ACameraThatRunsWithItHasAcceptedIt)
{
    offerReload({});
    int restart = 0;
    EXPECT_EQ(KxGi__DoReconfig(&restart), 0);
    KxGi__ResetTermSigProc();
    EXPECT_FALSE(fallBack(host()));
}

// ---- Look-up tables, which the plug-in knows by their address.

Settings withTable(std::uint16_t value, std::uint32_t bits = 9)
{
    Settings settings;
    settings.lut.assign(kLutEntries, value);
    settings.lutBits = bits;
    return settings;
}

TEST_F(ConfigTakeover, ANewTableHasANewAddressAndTheOldOneStays)
{
    settings() = withTable(1);
    const std::uint16_t* const first = KxGiMainCtx__GetLutDataU16();
    offerLive(withTable(2));
    EXPECT_NE(KxGi__CheckDynConfig(), 0);
    const std::uint16_t* const second = KxGiMainCtx__GetLutDataU16();
    EXPECT_NE(second, first);
    EXPECT_EQ(second[511], 2U);
    EXPECT_EQ(first[511], 1U) << "still there";
    offerLive(withTable(1));
    EXPECT_NE(KxGi__CheckDynConfig(), 0);
    EXPECT_NE(KxGiMainCtx__GetLutDataU16(), first) << "no address comes twice";
    EXPECT_NE(KxGiMainCtx__GetLutDataU16(), second);
}

TEST_F(ConfigTakeover, AnEqualTableKeepsItsAddress)
{
    settings() = withTable(1);
    const std::uint16_t* const first = KxGiMainCtx__GetLutDataU16();
    offerLive(withTable(1));
    EXPECT_NE(KxGi__CheckDynConfig(), 0);
    EXPECT_EQ(KxGiMainCtx__GetLutDataU16(), first);
    offerReload(withTable(1));
    int restart = 0;
    EXPECT_EQ(KxGi__DoReconfig(&restart), 0);
    EXPECT_EQ(KxGiMainCtx__GetLutDataU16(), first);
    KxGi__ResetTermSigProc();
    EXPECT_TRUE(host().oldTables.empty()) << "nothing to keep";
    offerLive(withTable(1, 10));
    EXPECT_NE(KxGi__CheckDynConfig(), 0);
    EXPECT_NE(KxGiMainCtx__GetLutDataU16(), first) << "its values mean something else";
}

TEST_F(ConfigTakeover, OldTablesAreKeptForLongButNotForGood)
{
    constexpr std::size_t kKept = 256;
    settings() = withTable(1);
    const std::uint16_t* const first = KxGiMainCtx__GetLutDataU16();
    for (std::size_t i = 0; i < kKept; ++i) {
        offerLive(withTable(i % 2 == 0 ? 2 : 1));
        ASSERT_NE(KxGi__CheckDynConfig(), 0);
    }
    ASSERT_EQ(host().oldTables.size(), kKept);
    EXPECT_EQ(host().oldTables.front().data(), first);
    const std::uint16_t* const second = host().oldTables[1].data();
    offerLive(withTable(2));
    ASSERT_NE(KxGi__CheckDynConfig(), 0);
    EXPECT_EQ(host().oldTables.size(), kKept);
    EXPECT_EQ(host().oldTables.front().data(), second);
}

TEST_F(ConfigTakeover, AReloadedTableKeepsTheOldOneAliveToo)
{
    settings() = withTable(1);
    const std::uint16_t* const first = KxGiMainCtx__GetLutDataU16();
    offerReload(withTable(2));
    int restart = 0;
    EXPECT_EQ(KxGi__DoReconfig(&restart), 0);
    EXPECT_NE(KxGiMainCtx__GetLutDataU16(), first);
    KxGi__ResetTermSigProc();
    ASSERT_EQ(host().oldTables.size(), 1U);
    EXPECT_EQ(host().oldTables[0].data(), first);
    offerReload({});
    EXPECT_EQ(KxGi__DoReconfig(&restart), 0);
    EXPECT_EQ(KxGiMainCtx__GetLutDataU16(), nullptr);
}

} // namespace
} // namespace kxhost
