// What USB cameras need of a computer: memory for transfers, and that nobody else holds the camera.
#include "doctor/doctor_usb.h"

#include <array>
#include <cstdio>
#include <optional>

#include <unistd.h>

namespace kxhost {
namespace {

constexpr const char* kDevices = "/sys/bus/usb/devices";
constexpr const char* kMemory = "/sys/module/usbcore/parameters/usbfs_memory_mb";

/// The device file of what lies at `folder`; empty = its numbers cannot be read.
std::string nodeOf(const Tree& tree, const std::string& folder)
{
    const FileNumber bus = tree.number(folder + "/busnum");
    const FileNumber device = tree.number(folder + "/devnum");
    if (bus.state != FileNumber::State::kThere || device.state != FileNumber::State::kThere) {
        return {};
    }
    std::array<char, 80> node{};
    std::snprintf(node.data(), node.size(), "/dev/bus/usb/%03u/%03u",
                  static_cast<unsigned>(bus.value), static_cast<unsigned>(device.value));
    return node.data();
}

/// A process that claims an interface of a device does so through the driver usbfs.
bool isClaimed(const Tree& tree, const std::string& place, const std::vector<std::string>& devices)
{
    for (const std::string& name : devices) {
        const std::string driver = tree.link(std::string(kDevices) + "/" + name + "/driver");
        if (name.starts_with(place + ":") && std::filesystem::path(driver).filename() == "usbfs") {
            return true;
        }
    }
    return false;
}

/// Whether a file that the process has open is this one; nothing = it cannot be seen.
std::optional<bool> holds(const Tree& tree, const std::string& process, const std::string& node)
{
    const std::filesystem::path folder = process + "/fd";
    const auto files = tree.names(folder.native());
    if (!files) {
        return std::nullopt;
    }
    for (const std::string& file : *files) {
        if (tree.link((folder / file).native()) == node) {
            return true;
        }
    }
    return false;
}

void findHolders(const Tree& tree, UsbFacts& facts)
{
    for (const std::string& name : tree.names("/proc").value_or(std::vector<std::string>())) {
        const std::optional<std::uint64_t> pid = wholeNumber(name);
        if (!pid) {
            continue;
        }
        const std::string process = "/proc/" + name;
        for (UsbCamera& camera : facts.cameras) {
            const std::optional<bool> held = holds(tree, process, camera.node);
            if (held.value_or(false)) {
                camera.holders.push_back({static_cast<int>(*pid), tree.line(process + "/comm")});
            }
            // One that has ended meanwhile hides nothing.
            facts.sawAll = facts.sawAll && (held || !tree.has(process));
        }
    }
}

std::string holdersText(const std::vector<Holder>& holders)
{
    std::string text;
    for (const Holder& holder : holders) {
        text += (text.empty() ? "held by " : ", ") +
                (holder.command.empty() ? "a process" : holder.command) + " (process " +
                std::to_string(holder.pid) + ")";
    }
    return text;
}

/// Ends the first of them in the way that loses no frame, if there is one.
std::string endCommand(const Holder& holder)
{
    const std::string pid = std::to_string(holder.pid);
    return holder.command == "kxhost" ? "kxhost ctl " + pid + " finish" : "kill " + pid;
}

Check judgeCamera(const UsbCamera& camera, bool sawAll)
{
    Check check{"camera",
                camera.product.empty() ? camera.place : camera.product,
                Verdict::kOk,
                "held by nobody",
                "held by nobody",
                "",
                ""};
    if (!camera.holders.empty()) {
        check.verdict = Verdict::kWarn;
        check.found = holdersText(camera.holders);
        check.command = endCommand(camera.holders.front());
        check.note = "Fine if that is the grab that is meant to run.";
    } else if (camera.claimed) {
        check.verdict = Verdict::kWarn;
        check.found = "held by a process that cannot be seen";
        check.command = "sudo kxhost doctor";
        check.note = "Only root sees what the processes of others have open.";
    } else if (camera.node.empty()) {
        check.verdict = Verdict::kUnknown;
        check.found = "its numbers cannot be read";
    } else if (!sawAll) {
        check.note = "By the state of its interfaces; only root sees the open files of others.";
    }
    return check;
}

} // namespace

UsbFacts readUsb(const Tree& tree)
{
    UsbFacts facts;
    facts.memoryMb = tree.number(kMemory);
    const auto devices = tree.names(kDevices);
    facts.toldBus = devices.has_value();
    for (const std::string& name : devices.value_or(std::vector<std::string>())) {
        const std::string folder = std::string(kDevices) + "/" + name;
        if (tree.line(folder + "/idVendor") != kCameraVendor) {
            continue;
        }
        UsbCamera camera;
        camera.place = name;
        camera.product = tree.line(folder + "/product");
        camera.node = nodeOf(tree, folder);
        camera.usable =
            !camera.node.empty() && access(tree.at(camera.node).c_str(), R_OK | W_OK) == 0;
        camera.claimed = isClaimed(tree, name, *devices);
        facts.cameras.push_back(camera);
    }
    if (!facts.cameras.empty()) {
        findHolders(tree, facts);
    }
    return facts;
}

Check judgeUsbMemory(const FileNumber& megabytes, const DoctorNeeds& needs)
{
    Check check{
        "usbfs-memory", "", Verdict::kOk, "", std::to_string(needs.usbfsMb) + " MB", "", ""};
    if (megabytes.state == FileNumber::State::kAbsent) {
        check.verdict = Verdict::kSkip;
        check.found = "no USB here";
        return check;
    }
    if (megabytes.state == FileNumber::State::kGarbled) {
        check.verdict = Verdict::kUnknown;
        check.found = "no number to be read";
        return check;
    }
    // The kernel's 0 means: as much as there is.
    check.found = megabytes.value == 0 ? "no limit" : std::to_string(megabytes.value) + " MB";
    if (megabytes.value == 0 || megabytes.value >= needs.usbfsMb) {
        return check;
    }
    check.verdict = lacking(needs.usb);
    check.note = needs.usb == Weight::kSure ? "" : "Only USB cameras need it.";
    if (check.verdict != Verdict::kSkip) {
        // Now and at each boot.
        const std::string file = "/etc/tmpfiles.d/usbfs-memory.conf";
        check.command = "echo 'w " + std::string(kMemory) + " - - - - " +
                        std::to_string(needs.usbfsMb) + "' | sudo tee " + file +
                        " && sudo systemd-tmpfiles --create " + file;
    }
    return check;
}

Checks judgeCameras(const UsbFacts& facts)
{
    Checks checks;
    for (const UsbCamera& camera : facts.cameras) {
        checks.push_back(judgeCamera(camera, facts.sawAll));
    }
    if (checks.empty()) {
        checks.push_back({"camera", "", Verdict::kSkip,
                          facts.toldBus ? "no USB camera of vendor 1e10" : "no USB here", "", "",
                          "Who holds a GigE camera cannot be seen from outside."});
    }
    return checks;
}

} // namespace kxhost
