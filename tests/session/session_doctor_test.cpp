// kxhost doctor as a program: what it looks at, prints and returns.
#include "grab_session.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>

namespace {

using kxtest::Finished;
using kxtest::kxhostPath;
using Json = nlohmann::json;

/// A computer with one USB camera that lacks nothing.
class SessionDoctor : public testing::Test {
protected:
    SessionDoctor()
    {
        file("sys/module/usbcore/parameters/usbfs_memory_mb", "1000\n");
        file("sys/bus/usb/devices/2-1/idVendor", "1e10\n");
        file("sys/bus/usb/devices/2-1/product", "Flea3 FL3-U3-13S2C\n");
        file("sys/bus/usb/devices/2-1/busnum", "2\n");
        file("sys/bus/usb/devices/2-1/devnum", "5\n");
        file("dev/bus/usb/002/005", "");
        file("etc/udev/rules.d/40-camera.rules",
             "ATTR{idVendor}==\"1e10\", MODE=\"0660\", GROUP=\"plugdev\"\n");
        file("etc/group", "plugdev:x:46:grabber\n");
        file("etc/passwd", "grabber:x:1000:1000::/:/bin/sh\n");
        file("proc/self/status", "Uid:\t1000\t1000\t1000\t1000\nGid:\t1000\t1000\t1000\t1000\n"
                                 "Groups:\t46\nCapEff:\t0\n");
        file("proc/self/limits", "Max locked memory  unlimited unlimited bytes\n"
                                 "Max realtime priority 98 98\n");
        file("proc/sys/net/core/rmem_max", "212992\n");
        file("proc/sys/net/core/rmem_default", "212992\n");
    }

    void file(const std::string& path, const std::string& text) const
    {
        std::filesystem::create_directories((folder_.path() / path).parent_path());
        kxtest::writeText(folder_.path() / path, text);
    }
    Finished doctor(const std::vector<std::string>& further = {}) const
    {
        std::vector<std::string> all = {kxhostPath(), "doctor", "--root", folder_.path().string()};
        all.insert(all.end(), further.begin(), further.end());
        if (std::ranges::find(further, "--camera-library") == further.end()) {
            all.emplace_back("--simulate");
        }
        return kxtest::run(all);
    }
    /// The check of this name.
    Json line(const std::string& name, std::vector<std::string> further = {}) const
    {
        further.emplace_back("--json");
        const Json all = Json::parse(doctor(further).out, nullptr, false);
        for (const Json& check : all.value("checks", Json::array())) {
            if (check["check"] == name) {
                return check;
            }
        }
        return {};
    }

    kxtest::TemporaryFolder folder_;
};

TEST_F(SessionDoctor, AComputerThatLacksNothing)
{
    const Finished finished = doctor();
    EXPECT_EQ(finished.code, 0) << finished.out;
    EXPECT_EQ(finished.err, "");
    for (const char* part :
         {"camera-library", "simulated cameras", "Flea3 FL3-U3-13S2C: held by nobody", "1000 MB",
          "40-camera.rules: group plugdev", "in group plugdev", "Nothing has to be mended"}) {
        EXPECT_NE(finished.out.find(part), std::string::npos) << part << " in\n" << finished.out;
    }
    EXPECT_EQ(finished.out.find("$ "), std::string::npos) << finished.out;
}

TEST_F(SessionDoctor, WhatHasToBeMendedIsExitCode12)
{
    file("sys/module/usbcore/parameters/usbfs_memory_mb", "16\n");
    const Finished finished = doctor();
    EXPECT_EQ(finished.code, 12) << finished.out;
    EXPECT_NE(finished.out.find("fail     usbfs-memory"), std::string::npos) << finished.out;
    EXPECT_NE(finished.out.find("         $ echo 'w /sys/module/usbcore"), std::string::npos);
    EXPECT_NE(finished.out.find("1 to mend"), std::string::npos);
}

TEST_F(SessionDoctor, WhatCannotBeFoundOutIsExitCode13)
{
    file("proc/self/limits", "nothing\n");
    const Finished finished = doctor();
    EXPECT_EQ(finished.code, 13) << finished.out;
    EXPECT_NE(finished.out.find("2 not found out"), std::string::npos) << finished.out;
}

TEST_F(SessionDoctor, AnEmptyTreeFailsNothing)
{
    const kxtest::TemporaryFolder empty;
    const Finished finished =
        kxtest::run({kxhostPath(), "doctor", "--simulate", "--root", empty.path().string()});
    EXPECT_EQ(finished.code, 13) << "its limits are not told";
    EXPECT_EQ(finished.out.find("fail"), std::string::npos) << finished.out;
    EXPECT_NE(finished.out.find("no USB here"), std::string::npos);
    EXPECT_NE(finished.out.find("no network interfaces here"), std::string::npos);
}

TEST_F(SessionDoctor, JsonHoldsEachCheckAndTheExitCode)
{
    const Finished finished = doctor({"--json"});
    const Json all = Json::parse(finished.out, nullptr, false);
    ASSERT_TRUE(all.is_object()) << finished.out;
    EXPECT_EQ(all["exit_code"], 0);
    std::vector<std::string> names;
    for (const Json& check : all["checks"]) {
        names.push_back(check["check"]);
        for (const char* field :
             {"check", "subject", "verdict", "found", "needed", "command", "note"}) {
            EXPECT_TRUE(check.at(field).is_string()) << field;
        }
        EXPECT_EQ(check.size(), 7U);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"camera-library", "camera", "usbfs-memory",
                                               "udev-rule", "group", "rmem-max", "rmem-default",
                                               "mtu", "rt-priority", "memory-lock"}));
}

TEST_F(SessionDoctor, AConfigurationSaysWhatIsNeeded)
{
    EXPECT_EQ(line("usbfs-memory")["needed"], "1000 MB");
    kxtest::writeText(folder_.file("camera.toml"), "[region]\nwidth = 1024\nheight = 1024\n"
                                                   "[gige]\npacket_size = 4000\n");
    const std::vector<std::string> configured = {"-c", folder_.file("camera.toml")};
    EXPECT_EQ(line("usbfs-memory", configured)["needed"], "16 MB");
    EXPECT_EQ(line("mtu", configured)["needed"], "4000 bytes");
    EXPECT_EQ(line("rmem-max", configured)["verdict"], "fail");
    EXPECT_EQ(doctor(configured).code, 12);
    EXPECT_EQ(line("usbfs-memory",
                   {"-c", folder_.file("camera.toml"), "--set", "grab.buffers=16"})["needed"],
              "32 MB");
}

TEST_F(SessionDoctor, TheKindOfCameraCanBeNamed)
{
    EXPECT_EQ(line("rmem-max")["verdict"], "skip") << "the camera that is plugged in is a USB one";
    EXPECT_EQ(line("rmem-max", {"--gige"})["verdict"], "fail");
    std::filesystem::remove_all(folder_.path() / "sys/bus");
    file("sys/module/usbcore/parameters/usbfs_memory_mb", "16\n");
    EXPECT_EQ(line("usbfs-memory")["verdict"], "warn");
    EXPECT_EQ(line("usbfs-memory", {"--usb"})["verdict"], "fail");
    EXPECT_EQ(line("usbfs-memory", {"--gige"})["verdict"], "skip");
}

TEST_F(SessionDoctor, TheLibraryIsReallyLoaded)
{
    const Json simulated = line("camera-library");
    EXPECT_EQ(simulated["verdict"], "ok");
    const std::string path = simulated["note"];
    EXPECT_TRUE(std::filesystem::path(path).is_absolute()) << path;
    EXPECT_TRUE(std::filesystem::exists(path)) << path;

    const Finished missing = doctor({"--camera-library", "/no/such/libflycapture.so.2"});
    EXPECT_EQ(missing.code, 12);
    EXPECT_NE(missing.out.find("not loaded"), std::string::npos) << missing.out;
    const Json wrong = line("camera-library", {"--camera-library", "libm.so.6"});
    EXPECT_EQ(wrong["verdict"], "fail");
    EXPECT_NE(wrong["note"].get<std::string>().find("does not carry the name"), std::string::npos)
        << wrong;
}

TEST_F(SessionDoctor, TheReleaseIsThatOfTheFileBehindTheName)
{
    const std::string simulation = line("camera-library")["note"];
    std::filesystem::copy_file(simulation, folder_.file("libflycapture.so.2.13.3.31"));
    std::filesystem::create_symlink("libflycapture.so.2.13.3.31",
                                    folder_.file("libflycapture.so.2"));
    const Finished finished = kxtest::run({kxhostPath(), "doctor", "--json"},
                                          {"LD_LIBRARY_PATH=" + folder_.path().string()});
    const Json all = Json::parse(finished.out, nullptr, false);
    EXPECT_EQ(all["checks"][0]["note"],
              std::filesystem::canonical(folder_.file("libflycapture.so.2.13.3.31")).string())
        << finished.out;
}

TEST_F(SessionDoctor, MistakesHaveTheirExitCodes)
{
    EXPECT_EQ(kxtest::run({kxhostPath(), "doctor", "--fix"}).code, 2);
    EXPECT_EQ(kxtest::run({kxhostPath(), "doctor", "--root", "/no/such/folder"}).code, 2);
    const Finished finished = doctor({"--set", "region.width=none"});
    EXPECT_EQ(finished.code, 3);
    EXPECT_NE(finished.err.find("region.width"), std::string::npos) << finished.err;
}

TEST_F(SessionDoctor, HelpTeaches)
{
    const Finished finished = kxtest::run({kxhostPath(), "doctor", "--help"});
    EXPECT_EQ(finished.code, 0);
    for (const char* part : {"--json", "--usb", "--gige", "--root", "warn", "unknown", "Exit codes",
                             "something has to be mended", "something could not be found out"}) {
        EXPECT_NE(finished.out.find(part), std::string::npos) << part;
    }
}

} // namespace
