// Receive buffers and packet sizes.
#include "doctor/doctor_network.h"
#include "doctor_fixture.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

using kxtest::FakeTree;
using kxtest::gigeNeeds;
using kxtest::there;

/// An Ethernet port as the kernel shows it.
void port(const FakeTree& fake, const std::string& name, const std::string& state,
          const std::string& mtu, const std::string& type = "1")
{
    const std::string folder = "/sys/class/net/" + name;
    fake.file(folder + "/type", type + "\n");
    fake.file(folder + "/operstate", state + "\n");
    fake.file(folder + "/mtu", mtu + "\n");
    fake.folder(folder + "/device");
}

Checks mtuOf(const FakeTree& fake, const DoctorNeeds& needs)
{
    return judgeMtu(readInterfaces(fake.tree()), needs);
}

TEST(DoctorNetwork, AReceiveBufferMayBeExactlyAsNeeded)
{
    const Check enough = judgeReceiveBuffer("rmem_max", there(1000000), gigeNeeds());
    EXPECT_EQ(enough.verdict, Verdict::kOk);
    EXPECT_EQ(enough.name, "rmem-max");
    EXPECT_EQ(enough.found, "1000000 bytes");
    EXPECT_EQ(enough.needed, "1000000 bytes");
    EXPECT_EQ(enough.command, "");
    const Check less = judgeReceiveBuffer("rmem_default", there(999999), gigeNeeds());
    EXPECT_EQ(less.verdict, Verdict::kFail);
    EXPECT_EQ(less.found, "999999 bytes");
    EXPECT_EQ(less.command, "echo 'net.core.rmem_default = 1000000' | sudo tee "
                            "/etc/sysctl.d/60-camera-rmem-default.conf && sudo sysctl --system");
}

TEST(DoctorNetwork, ASmallReceiveBufferMattersToGigeOnly)
{
    DoctorNeeds needs = gigeNeeds();
    needs.gige = Weight::kMaybe;
    const Check warned = judgeReceiveBuffer("rmem_max", there(1), needs);
    EXPECT_EQ(warned.verdict, Verdict::kWarn);
    EXPECT_NE(warned.command, "");
    EXPECT_EQ(warned.note, "Only GigE cameras need it.");
    needs.gige = Weight::kNone;
    const Check skipped = judgeReceiveBuffer("rmem_max", there(1), needs);
    EXPECT_EQ(skipped.verdict, Verdict::kSkip);
    EXPECT_EQ(skipped.command, "");
}

TEST(DoctorNetwork, AnAbsentBufferIsNoFailureAndAGarbledOneIsNotKnown)
{
    const Check absent = judgeReceiveBuffer("rmem_max", kxtest::kAbsentNumber, gigeNeeds());
    EXPECT_EQ(absent.verdict, Verdict::kSkip);
    EXPECT_EQ(absent.found, "not told here");
    const Check garbled = judgeReceiveBuffer("rmem_max", kxtest::kGarbledNumber, gigeNeeds());
    EXPECT_EQ(garbled.verdict, Verdict::kUnknown);
    EXPECT_EQ(garbled.found, "no number to be read");
}

TEST(DoctorNetwork, ANameThatAShellWouldReadOtherwiseGetsNoCommand)
{
    for (const char* const name : {"a;reboot", "$(id)", "a b", "a'b", "e\x1b[1m"}) {
        const FakeTree fake;
        port(fake, name, "up", "1500");
        const Check check = mtuOf(fake, gigeNeeds(9000)).at(0);
        EXPECT_EQ(check.verdict, Verdict::kFail);
        EXPECT_EQ(check.command, "") << name;
        EXPECT_EQ(check.note, "No command is given for an interface with such a name.");
    }
    const FakeTree plain;
    port(plain, "br-0.7:1@Z_", "up", "1500");
    EXPECT_EQ(mtuOf(plain, gigeNeeds(9000)).at(0).command,
              "sudo ip link set dev br-0.7:1@Z_ mtu 9000");
}

TEST(DoctorNetwork, PacketsMayBeExactlyAsNeeded)
{
    const FakeTree enough;
    port(enough, "eth1", "up", "9000");
    ASSERT_EQ(mtuOf(enough, gigeNeeds(9000)).size(), 1U);
    EXPECT_EQ(mtuOf(enough, gigeNeeds(9000))[0].verdict, Verdict::kOk);
    const FakeTree less;
    port(less, "eth1", "up", "8999");
    const Check check = mtuOf(less, gigeNeeds(9000)).at(0);
    EXPECT_EQ(check.verdict, Verdict::kFail);
    EXPECT_EQ(check.subject, "eth1");
    EXPECT_EQ(check.found, "8999 bytes");
    EXPECT_EQ(check.needed, "9000 bytes");
    EXPECT_EQ(check.command, "sudo ip link set dev eth1 mtu 9000");
    EXPECT_NE(check.note.find("switch"), std::string::npos);
}

TEST(DoctorNetwork, WithoutASignOfGigeSmallPacketsAreAWarningOrNothing)
{
    const FakeTree fake;
    port(fake, "eth0", "up", "1500");
    DoctorNeeds needs = gigeNeeds();
    needs.gige = Weight::kMaybe;
    EXPECT_EQ(mtuOf(fake, needs)[0].verdict, Verdict::kWarn);
    needs.gige = Weight::kNone;
    EXPECT_EQ(mtuOf(fake, needs)[0].verdict, Verdict::kSkip);
    EXPECT_EQ(mtuOf(fake, needs)[0].command, "");
}

TEST(DoctorNetwork, OnePortWithLargePacketsIsEnough)
{
    const FakeTree fake;
    port(fake, "eth0", "up", "1500");
    port(fake, "eth1", "up", "9000");
    const Checks checks = mtuOf(fake, gigeNeeds());
    ASSERT_EQ(checks.size(), 2U);
    EXPECT_EQ(checks[0].subject, "eth0");
    EXPECT_EQ(checks[0].verdict, Verdict::kSkip);
    EXPECT_EQ(checks[1].subject, "eth1");
    EXPECT_EQ(checks[1].verdict, Verdict::kOk);
}

TEST(DoctorNetwork, APortWithoutCableDoesNotCount)
{
    const FakeTree fake;
    port(fake, "eth0", "up", "1500");
    port(fake, "eth1", "down", "9000");
    const Checks checks = mtuOf(fake, gigeNeeds());
    ASSERT_EQ(checks.size(), 1U);
    EXPECT_EQ(checks[0].verdict, Verdict::kFail);
}

TEST(DoctorNetwork, ADriverThatDoesNotTellIsTakenForUp)
{
    const FakeTree fake;
    port(fake, "usb0", "unknown", "9000");
    EXPECT_EQ(mtuOf(fake, gigeNeeds())[0].verdict, Verdict::kOk);
}

TEST(DoctorNetwork, LoopbackVirtualAndWirelessAreLeftOut)
{
    const FakeTree fake;
    port(fake, "lo", "unknown", "65536", "772");
    port(fake, "wlan0", "up", "1500");
    fake.folder("/sys/class/net/wlan0/wireless");
    port(fake, "wlan1", "up", "1500");
    fake.folder("/sys/class/net/wlan1/phy80211");
    fake.file("/sys/class/net/docker0/type", "1\n");
    fake.file("/sys/class/net/docker0/operstate", "up\n");
    fake.file("/sys/class/net/docker0/mtu", "1500\n");
    const Checks checks = mtuOf(fake, gigeNeeds());
    ASSERT_EQ(checks.size(), 1U);
    EXPECT_EQ(checks[0].verdict, Verdict::kSkip);
    EXPECT_EQ(checks[0].found, "no Ethernet port is up");
}

TEST(DoctorNetwork, AContainerWithoutInterfacesIsNoFailure)
{
    const FakeTree fake;
    const Checks checks = mtuOf(fake, gigeNeeds());
    ASSERT_EQ(checks.size(), 1U);
    EXPECT_EQ(checks[0].verdict, Verdict::kSkip);
    EXPECT_EQ(checks[0].found, "no network interfaces here");
}

TEST(DoctorNetwork, AGarbledPacketSizeIsNotKnown)
{
    const FakeTree fake;
    port(fake, "eth0", "up", "many");
    const Check check = mtuOf(fake, gigeNeeds()).at(0);
    EXPECT_EQ(check.verdict, Verdict::kUnknown);
    EXPECT_EQ(check.found, "no number to be read");
}

TEST(DoctorNetwork, AllOfItIsReadFromTheTree)
{
    const FakeTree fake;
    fake.file("/proc/sys/net/core/rmem_max", "1000000\n");
    fake.file("/proc/sys/net/core/rmem_default", "212992\n");
    port(fake, "eth1", "up", "9000");
    const Checks checks = checkNetwork(fake.tree(), gigeNeeds());
    ASSERT_EQ(checks.size(), 3U);
    EXPECT_EQ(checks[0].verdict, Verdict::kOk);
    EXPECT_EQ(checks[1].verdict, Verdict::kFail);
    EXPECT_EQ(checks[1].name, "rmem-default");
    EXPECT_EQ(checks[2].name, "mtu");
}

} // namespace
} // namespace kxhost
