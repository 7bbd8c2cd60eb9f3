// Memory of USB transfers, and who holds a camera.
#include "doctor/doctor_usb.h"
#include "doctor_fixture.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

using kxtest::FakeTree;
using kxtest::there;
using kxtest::usbNeeds;

constexpr const char* kDevice = "/sys/bus/usb/devices/2-1";

/// A camera in port 2-1, as the kernel shows it.
void plugIn(const FakeTree& fake, const std::string& vendor = "1e10")
{
    const std::string folder = kDevice;
    fake.file(folder + "/idVendor", vendor + "\n");
    fake.file(folder + "/product", "Flea3 FL3-U3-13S2C\n");
    fake.file(folder + "/busnum", "2\n");
    fake.file(folder + "/devnum", "5\n");
    fake.file("/dev/bus/usb/002/005", "");
}

void process(const FakeTree& fake, const std::string& pid, const std::string& command,
             const std::string& open)
{
    fake.file("/proc/" + pid + "/comm", command + "\n");
    fake.link("/proc/" + pid + "/fd/0", "/dev/null");
    fake.link("/proc/" + pid + "/fd/7", open);
}

Check cameraOf(const FakeTree& fake)
{
    const Checks checks = judgeCameras(readUsb(fake.tree()));
    EXPECT_EQ(checks.size(), 1U);
    return checks.at(0);
}

TEST(DoctorUsb, MemoryMayBeExactlyAsNeeded)
{
    EXPECT_EQ(judgeUsbMemory(there(100), usbNeeds(100)).verdict, Verdict::kOk);
    const Check less = judgeUsbMemory(there(99), usbNeeds(100));
    EXPECT_EQ(less.verdict, Verdict::kFail);
    EXPECT_EQ(less.found, "99 MB");
    EXPECT_EQ(less.needed, "100 MB");
    EXPECT_EQ(less.command,
              "echo 'w /sys/module/usbcore/parameters/usbfs_memory_mb - - - - 100' | sudo tee "
              "/etc/tmpfiles.d/usbfs-memory.conf && sudo systemd-tmpfiles --create "
              "/etc/tmpfiles.d/usbfs-memory.conf");
}

TEST(DoctorUsb, NoLimitOfMemoryIsEnough)
{
    const Check check = judgeUsbMemory(there(0), usbNeeds());
    EXPECT_EQ(check.verdict, Verdict::kOk);
    EXPECT_EQ(check.found, "no limit");
}

TEST(DoctorUsb, LittleMemoryMattersToUsbCamerasOnly)
{
    DoctorNeeds needs = usbNeeds();
    needs.usb = Weight::kMaybe;
    EXPECT_EQ(judgeUsbMemory(there(16), needs).verdict, Verdict::kWarn);
    EXPECT_EQ(judgeUsbMemory(there(16), needs).note, "Only USB cameras need it.");
    needs.usb = Weight::kNone;
    EXPECT_EQ(judgeUsbMemory(there(16), needs).verdict, Verdict::kSkip);
    EXPECT_EQ(judgeUsbMemory(there(16), needs).command, "");
}

TEST(DoctorUsb, AComputerWithoutUsbIsNoFailure)
{
    EXPECT_EQ(judgeUsbMemory(kxtest::kAbsentNumber, usbNeeds()).verdict, Verdict::kSkip);
    EXPECT_EQ(judgeUsbMemory(kxtest::kGarbledNumber, usbNeeds()).verdict, Verdict::kUnknown);
    const FakeTree fake;
    const Check check = cameraOf(fake);
    EXPECT_EQ(check.verdict, Verdict::kSkip);
    EXPECT_EQ(check.found, "no USB here");
}

TEST(DoctorUsb, MemoryIsReadFromTheTree)
{
    const FakeTree fake;
    fake.file("/sys/module/usbcore/parameters/usbfs_memory_mb", "16\n");
    EXPECT_EQ(readUsb(fake.tree()).memoryMb.value, 16U);
}

TEST(DoctorUsb, OnlyTheMakersDevicesAreCameras)
{
    const FakeTree fake;
    plugIn(fake, "046d");
    const Check check = cameraOf(fake);
    EXPECT_EQ(check.verdict, Verdict::kSkip);
    EXPECT_EQ(check.found, "no USB camera of vendor 1e10");
    EXPECT_NE(check.note.find("GigE"), std::string::npos);
}

TEST(DoctorUsb, ACameraThatNobodyHolds)
{
    const FakeTree fake;
    plugIn(fake);
    process(fake, "77", "kxhost", "/dev/bus/usb/002/004");
    fake.file("/proc/meminfo", "no process");
    const UsbFacts facts = readUsb(fake.tree());
    ASSERT_EQ(facts.cameras.size(), 1U);
    EXPECT_EQ(facts.cameras[0].node, "/dev/bus/usb/002/005");
    EXPECT_TRUE(facts.cameras[0].usable);
    EXPECT_TRUE(facts.sawAll);
    const Check check = cameraOf(fake);
    EXPECT_EQ(check.verdict, Verdict::kOk);
    EXPECT_EQ(check.subject, "Flea3 FL3-U3-13S2C");
    EXPECT_EQ(check.found, "held by nobody");
    EXPECT_EQ(check.note, "");
}

TEST(DoctorUsb, AGrabThatHoldsTheCameraIsNamedAndFinished)
{
    const FakeTree fake;
    plugIn(fake);
    process(fake, "77", "kxhost", "/dev/bus/usb/002/005");
    process(fake, "5", "init", "/dev/bus/usb/002/004");
    const Check check = cameraOf(fake);
    EXPECT_EQ(check.verdict, Verdict::kWarn);
    EXPECT_EQ(check.found, "held by kxhost (process 77)");
    EXPECT_EQ(check.command, "kxhost ctl 77 finish");
}

TEST(DoctorUsb, AnyOtherProgramIsEnded)
{
    const FakeTree fake;
    plugIn(fake);
    process(fake, "100", "flycap", "/dev/bus/usb/002/005");
    process(fake, "99", "viewer", "/dev/bus/usb/002/005");
    const Check check = cameraOf(fake);
    EXPECT_EQ(check.found, "held by flycap (process 100), viewer (process 99)");
    EXPECT_EQ(check.command, "kill 100");
}

TEST(DoctorUsb, AHolderThatCannotBeSeenIsTold)
{
    const FakeTree fake;
    plugIn(fake);
    fake.link("/sys/bus/usb/devices/2-1:1.0/driver", "../../../../bus/usb/drivers/usbfs");
    const Check check = cameraOf(fake);
    EXPECT_EQ(check.verdict, Verdict::kWarn);
    EXPECT_EQ(check.found, "held by a process that cannot be seen");
    EXPECT_EQ(check.command, "sudo kxhost doctor");
}

TEST(DoctorUsb, OtherDriversAndOtherDevicesClaimNothing)
{
    const FakeTree fake;
    plugIn(fake);
    fake.link("/sys/bus/usb/devices/2-1:1.0/driver", "../../../../bus/usb/drivers/uvcvideo");
    fake.link("/sys/bus/usb/devices/2-10:1.0/driver", "../../../../bus/usb/drivers/usbfs");
    EXPECT_EQ(cameraOf(fake).verdict, Verdict::kOk);
}

TEST(DoctorUsb, OpenFilesThatCannotBeSeenAreMentioned)
{
    const FakeTree fake;
    plugIn(fake);
    fake.file("/proc/77/comm", "secret\n"); // without a folder of open files
    EXPECT_FALSE(readUsb(fake.tree()).sawAll);
    const Check check = cameraOf(fake);
    EXPECT_EQ(check.verdict, Verdict::kOk);
    EXPECT_NE(check.note.find("only root sees"), std::string::npos);
}

TEST(DoctorUsb, ACameraWithoutNumbersIsNotKnown)
{
    const FakeTree fake;
    plugIn(fake);
    fake.file(std::string(kDevice) + "/devnum", "?\n");
    const Check check = cameraOf(fake);
    EXPECT_EQ(check.verdict, Verdict::kUnknown);
    EXPECT_EQ(check.found, "its numbers cannot be read");
}

TEST(DoctorUsb, ANodeThatIsNotThereCannotBeUsed)
{
    const FakeTree fake;
    plugIn(fake);
    std::filesystem::remove(fake.tree().at("/dev/bus/usb/002/005"));
    EXPECT_FALSE(readUsb(fake.tree()).cameras.at(0).usable);
}

TEST(DoctorUsb, ACameraWithoutANameIsCalledByItsPort)
{
    const FakeTree fake;
    plugIn(fake);
    std::filesystem::remove(fake.tree().at(std::string(kDevice) + "/product"));
    EXPECT_EQ(cameraOf(fake).subject, "2-1");
}

} // namespace
} // namespace kxhost
