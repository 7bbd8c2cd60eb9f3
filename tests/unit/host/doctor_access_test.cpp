// Rules of udev, and who is favoured by them.
#include "doctor/doctor_access.h"
#include "doctor_fixture.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kxhost {
namespace {

using kxtest::FakeTree;
using kxtest::usbNeeds;

constexpr const char* kRule =
    "SUBSYSTEM==\"usb\", ATTRS{idVendor}==\"1e10\", MODE=\"0664\", GROUP=\"plugdev\"\n";

ProcessFacts user(std::uint64_t id, std::vector<std::uint64_t> groups)
{
    ProcessFacts facts;
    facts.told = true;
    facts.user = id;
    facts.userName = "grabber";
    facts.groups = std::move(groups);
    return facts;
}

/// Facts of a computer with this rule, and with this line for the group.
AccessFacts accessWith(const std::string& rule, const std::string& group = "plugdev:x:46:\n")
{
    const FakeTree fake;
    fake.file("/etc/udev/rules.d/40-camera.rules", rule);
    fake.file("/etc/group", "root:x:0:\nbroken\n" + group);
    return readAccess(fake.tree());
}

UsbCamera camera(bool usable)
{
    UsbCamera camera;
    camera.node = "/dev/bus/usb/002/005";
    camera.usable = usable;
    return camera;
}

TEST(DoctorRules, GiveAccessInManyForms)
{
    const auto one = [](const std::string& text) { return rulesIn("40-a.rules", text); };
    ASSERT_EQ(one(kRule).size(), 1U);
    EXPECT_EQ(one(kRule)[0].group, "plugdev");
    EXPECT_EQ(one(kRule)[0].file, "40-a.rules");
    EXPECT_FALSE(one(kRule)[0].everybody);
    EXPECT_EQ(one("ATTR{idVendor}==\"1e10\", GROUP:=\"video\"").at(0).group, "video");
    EXPECT_EQ(one("ENV{ID_VENDOR_ID} == \"046d|1e10|04b4\" , GROUP = \"video\"").at(0).group,
              "video");
    EXPECT_EQ(one("ATTR{idVendor}==\"1e10\", \\\n  GROUP=\"video\"\n").at(0).group, "video");
    EXPECT_TRUE(one("ATTR{idVendor}==\"1e10\", MODE=\"0666\"").at(0).everybody);
    EXPECT_TRUE(one("ATTR{idVendor}==\"1e10\", TAG+=\"uaccess\"").at(0).seated);
}

TEST(DoctorRules, ForOtherDevicesOrPurposesGiveNone)
{
    for (const char* text :
         {"", "# ATTR{idVendor}==\"1e10\", MODE=\"0666\"",
          "ATTR{idVendor}==\"046d\", MODE=\"0666\"", "ATTR{idVendor}==\"11e10\", MODE=\"0666\"",
          "ATTR{idProduct}==\"1e10\", MODE=\"0666\"",
          "ATTR{idVendor}==\"1e10\", ATTR{power/control}=\"on\"",
          "ATTR{idVendor}==\"1e10\", GROUP==\"video\"",
          "ATTR{idVendor}==\"1e10\", MODE=\"0644\", GROUP=\"video\"",
          "ATTR{idVendor}==\"1e10\", MODE=\"0664\""}) {
        EXPECT_TRUE(rulesIn("40-a.rules", text).empty()) << text;
    }
}

TEST(DoctorRules, SeatsAreGivenOnlyByEarlyFiles)
{
    const std::string text = "ATTR{idVendor}==\"1e10\", TAG+=\"uaccess\"";
    EXPECT_EQ(rulesIn("72-a.rules", text).size(), 1U);
    EXPECT_EQ(rulesIn("73-seat-late.rules", text).size(), 0U);
    EXPECT_EQ(rulesIn("99-a.rules", text).size(), 0U);
}

TEST(DoctorRules, AFileMayJumpOverWhatIsNotTheMakers)
{
    const std::string text = "ATTR{idVendor}!=\"1e10\", GOTO=\"end\"\n"
                             "ATTR{idProduct}==\"3006\", MODE=\"0664\", GROUP=\"flirimaging\"\n"
                             "LABEL=\"end\"\n";
    ASSERT_EQ(rulesIn("40-a.rules", text).size(), 1U);
    EXPECT_EQ(rulesIn("40-a.rules", text)[0].group, "flirimaging");
}

TEST(DoctorRules, AreReadFromAllFoldersAndHideEachOther)
{
    for (const char* folder : {"/etc", "/run", "/lib", "/usr/lib", "/usr/local/lib"}) {
        const FakeTree fake;
        fake.file(std::string(folder) + "/udev/rules.d/40-a.rules", kRule);
        fake.file(std::string(folder) + "/udev/rules.d/40-b.txt", kRule);
        EXPECT_EQ(readAccess(fake.tree()).rules.size(), 1U) << folder;
    }
    const FakeTree hidden;
    hidden.file("/lib/udev/rules.d/40-a.rules", kRule);
    hidden.link("/etc/udev/rules.d/40-a.rules", "/dev/null");
    EXPECT_TRUE(readAccess(hidden.tree()).toldRules);
    EXPECT_EQ(readAccess(hidden.tree()).rules.size(), 0U);
}

TEST(DoctorRules, AreWantedForUsbCameras)
{
    const Check fine = judgeRules(accessWith(kRule), usbNeeds());
    EXPECT_EQ(fine.verdict, Verdict::kOk);
    EXPECT_EQ(fine.found, "40-camera.rules: group plugdev");
    const Check none = judgeRules(accessWith("# nothing"), usbNeeds());
    EXPECT_EQ(none.verdict, Verdict::kFail);
    EXPECT_EQ(none.found, "none");
    EXPECT_EQ(
        none.command,
        "echo 'SUBSYSTEM==\"usb\", ATTR{idVendor}==\"1e10\", MODE=\"0660\", "
        "GROUP=\"plugdev\", TAG+=\"uaccess\"' | sudo tee "
        "/etc/udev/rules.d/60-driver-pointgrey.rules && sudo udevadm control --reload && sudo "
        "udevadm trigger --subsystem-match=usb");
    DoctorNeeds needs = usbNeeds();
    needs.usb = Weight::kMaybe;
    EXPECT_EQ(judgeRules(accessWith(""), needs).verdict, Verdict::kWarn);
    needs.usb = Weight::kNone;
    EXPECT_EQ(judgeRules(accessWith(""), needs).verdict, Verdict::kSkip);
    EXPECT_EQ(judgeRules(AccessFacts(), usbNeeds()).verdict, Verdict::kSkip) << "a container";
}

TEST(DoctorRules, TheOneThatIsToldToBeMadeIsAccepted)
{
    const std::string command = judgeRules(accessWith(""), usbNeeds()).command;
    const std::size_t start = command.find('\'') + 1;
    const std::string rule = command.substr(start, command.find('\'', start) - start);
    const std::string shipped = std::filesystem::path(KX_UDEV_RULES).filename();
    EXPECT_NE(command.find("/etc/udev/rules.d/" + shipped + " "), std::string::npos) << command;
    const std::vector<UdevRule> rules = rulesIn(shipped, rule);
    ASSERT_EQ(rules.size(), 1U) << rule;
    EXPECT_EQ(rules[0].group, "plugdev");
    EXPECT_TRUE(rules[0].seated);
}

TEST(DoctorRules, TheOneThatIsInstalledIsAccepted)
{
    const std::vector<UdevRule> rules =
        rulesIn("60-driver-pointgrey.rules", kxtest::readText(KX_UDEV_RULES));
    ASSERT_EQ(rules.size(), 1U);
    EXPECT_EQ(rules[0].group, "plugdev");
    EXPECT_TRUE(rules[0].seated);
    EXPECT_FALSE(rules[0].everybody);
}

TEST(DoctorGroup, MembersAreLetIn)
{
    const Check check = judgeGroup(accessWith(kRule), user(1000, {1000, 46}), {}, usbNeeds());
    EXPECT_EQ(check.verdict, Verdict::kOk);
    EXPECT_EQ(check.found, "in group plugdev");
    const Check root = judgeGroup(accessWith(""), user(0, {0}), {}, usbNeeds());
    EXPECT_EQ(root.verdict, Verdict::kOk);
    EXPECT_EQ(root.found, "root");
    const std::string open = "ATTR{idVendor}==\"1e10\", MODE=\"0666\"";
    EXPECT_EQ(judgeGroup(accessWith(open), user(1000, {1000}), {}, usbNeeds()).found,
              "everybody may");
}

TEST(DoctorGroup, OthersAreTakenIntoTheGroup)
{
    const Check check = judgeGroup(accessWith(kRule), user(1000, {1000, 45, 47}), {}, usbNeeds());
    EXPECT_EQ(check.verdict, Verdict::kFail);
    EXPECT_EQ(check.found, "grabber is not in group plugdev");
    EXPECT_EQ(check.command, "sudo usermod -a -G plugdev \"grabber\"");
    EXPECT_NE(check.note.find("next login"), std::string::npos);
    DoctorNeeds needs = usbNeeds();
    needs.usb = Weight::kMaybe;
    EXPECT_EQ(judgeGroup(accessWith(kRule), user(1000, {}), {}, needs).verdict, Verdict::kWarn);
    needs.usb = Weight::kNone;
    EXPECT_EQ(judgeGroup(accessWith(kRule), user(1000, {}), {}, needs).verdict, Verdict::kSkip);
    EXPECT_EQ(judgeGroup(accessWith(kRule), user(1000, {}), {}, needs).command, "");
}

TEST(DoctorGroup, ASessionOlderThanTheMembershipIsTold)
{
    const Check check = judgeGroup(accessWith(kRule, "plugdev:x:46:other,grabber\n"),
                                   user(1000, {1000}), {}, usbNeeds());
    EXPECT_EQ(check.verdict, Verdict::kFail);
    EXPECT_EQ(check.command, "newgrp plugdev");
    EXPECT_NE(check.note.find("log in again"), std::string::npos);
}

TEST(DoctorGroup, AGroupThatIsNotThereIsMade)
{
    const Check check = judgeGroup(accessWith(kRule, ""), user(1000, {1000}), {}, usbNeeds());
    EXPECT_EQ(check.command,
              "sudo groupadd --system plugdev && sudo usermod -a -G plugdev \"grabber\"");
}

TEST(DoctorGroup, ACameraThatOpensIsProofEnough)
{
    const AccessFacts access = accessWith("ATTR{idVendor}==\"1e10\", TAG+=\"uaccess\"");
    const ProcessFacts process = user(1000, {1000});
    const Check open = judgeGroup(access, process, {camera(true)}, usbNeeds());
    EXPECT_EQ(open.verdict, Verdict::kOk);
    EXPECT_EQ(open.found, "may open /dev/bus/usb/002/005");
    const Check closed = judgeGroup(access, process, {camera(true), camera(false)}, usbNeeds());
    EXPECT_EQ(closed.verdict, Verdict::kFail);
    EXPECT_EQ(closed.found, "grabber only when sitting here");
    EXPECT_NE(closed.command.find("GROUP=\"plugdev\""), std::string::npos);
}

TEST(DoctorGroup, WithoutARuleThereIsNoneToBeIn)
{
    const Check check = judgeGroup(accessWith(""), user(1000, {1000}), {}, usbNeeds());
    EXPECT_EQ(check.verdict, Verdict::kSkip);
    EXPECT_EQ(check.found, "no rule names one");
    EXPECT_EQ(check.command, "");
}

TEST(DoctorGroup, WhoCannotBeReadIsNotKnown)
{
    EXPECT_EQ(judgeGroup(accessWith(kRule), ProcessFacts(), {}, usbNeeds()).verdict,
              Verdict::kUnknown);
}

TEST(DoctorGroup, AUserWithoutNameIsCalledByTheNumber)
{
    ProcessFacts process = user(1000, {1000});
    process.userName.clear();
    const Check check = judgeGroup(accessWith(kRule), process, {}, usbNeeds());
    EXPECT_EQ(check.found, "user 1000 is not in group plugdev");
    EXPECT_EQ(check.command, "sudo usermod -a -G plugdev \"$(id -un)\"");
}

} // namespace
} // namespace kxhost
