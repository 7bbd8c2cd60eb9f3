// What GigE cameras need of a computer: receive buffers of sockets and the packet size of its
// network interfaces.
#include "doctor/doctor_network.h"

#include <algorithm>

namespace kxhost {
namespace {

constexpr const char* kInterfaces = "/sys/class/net";
constexpr const char* kForGigeOnly = "Only GigE cameras need it.";

std::string bytesText(std::uint64_t bytes)
{
    return std::to_string(bytes) + " bytes";
}

bool suffices(const NetworkInterface& interface, std::uint64_t mtu)
{
    return interface.mtu.state == FileNumber::State::kThere && interface.mtu.value >= mtu;
}

/// Whether a shell takes the name for one word and nothing else.
bool isPlain(const std::string& name)
{
    constexpr const char* kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                   "0123456789_.:@-";
    return name.find_first_not_of(kPlain) == std::string::npos;
}

/// `lacks` is the verdict on an interface whose packets are too small.
Check judgeInterface(const NetworkInterface& interface, std::uint64_t mtu, Verdict lacks)
{
    Check check{"mtu", interface.name, Verdict::kOk, "", bytesText(mtu), "", ""};
    if (interface.mtu.state != FileNumber::State::kThere) {
        check.verdict = Verdict::kUnknown;
        check.found = "no number to be read";
        return check;
    }
    check.found = bytesText(interface.mtu.value);
    if (!suffices(interface, mtu)) {
        check.verdict = lacks;
        if (lacks != Verdict::kSkip && !isPlain(interface.name)) {
            check.note = "No command is given for an interface with such a name.";
        } else if (lacks != Verdict::kSkip) {
            check.command =
                "sudo ip link set dev " + interface.name + " mtu " + std::to_string(mtu);
            check.note = "If the camera is on it; until the next boot. Every switch on the way "
                         "needs it, too.";
        }
    }
    return check;
}

} // namespace

std::optional<std::vector<NetworkInterface>> readInterfaces(const Tree& tree)
{
    constexpr std::uint64_t kEthernet = 1;
    const auto names = tree.names(kInterfaces);
    if (!names) {
        return std::nullopt;
    }
    std::vector<NetworkInterface> interfaces;
    for (const std::string& name : *names) {
        const std::string folder = std::string(kInterfaces) + "/" + name;
        // Only what stands for hardware has a device.
        if (tree.number(folder + "/type").value == kEthernet && tree.has(folder + "/device") &&
            !tree.has(folder + "/wireless") && !tree.has(folder + "/phy80211")) {
            const std::string state = tree.line(folder + "/operstate");
            // Some drivers do not tell, even with a cable in.
            interfaces.push_back(
                {name, state == "up" || state == "unknown", tree.number(folder + "/mtu")});
        }
    }
    return interfaces;
}

Check judgeReceiveBuffer(const std::string& name, const FileNumber& bytes, const DoctorNeeds& needs)
{
    std::string word = name;
    std::ranges::replace(word, '_', '-');
    Check check{word, "", Verdict::kOk, "", bytesText(needs.receiveBytes), "", ""};
    if (bytes.state == FileNumber::State::kAbsent) {
        check.verdict = Verdict::kSkip;
        check.found = "not told here";
        check.note = "A container sees the host's limits only in part: look at the host.";
        return check;
    }
    if (bytes.state == FileNumber::State::kGarbled) {
        check.found = "no number to be read";
        check.verdict = Verdict::kUnknown;
        return check;
    }
    check.found = bytesText(bytes.value);
    if (bytes.value >= needs.receiveBytes) {
        return check;
    }
    check.verdict = lacking(needs.gige);
    check.note = needs.gige == Weight::kSure ? "" : kForGigeOnly;
    if (check.verdict != Verdict::kSkip) {
        check.command = "echo 'net.core." + name + " = " + std::to_string(needs.receiveBytes) +
                        "' | sudo tee /etc/sysctl.d/60-camera-" + word +
                        ".conf && sudo sysctl --system";
    }
    return check;
}

Checks judgeMtu(const std::optional<std::vector<NetworkInterface>>& interfaces,
                const DoctorNeeds& needs)
{
    Checks checks;
    const auto isUp = [](const NetworkInterface& each) { return each.up; };
    if (!interfaces || std::ranges::none_of(*interfaces, isUp)) {
        checks.push_back({"mtu", "", Verdict::kSkip,
                          interfaces ? "no Ethernet port is up" : "no network interfaces here",
                          bytesText(needs.mtu), "", ""});
        return checks;
    }
    const bool oneSuffices = std::ranges::any_of(*interfaces, [&](const NetworkInterface& each) {
        return each.up && suffices(each, needs.mtu);
    });
    for (const NetworkInterface& each : *interfaces) {
        if (each.up) {
            checks.push_back(judgeInterface(each, needs.mtu,
                                            oneSuffices ? Verdict::kSkip : lacking(needs.gige)));
        }
    }
    return checks;
}

Checks checkNetwork(const Tree& tree, const DoctorNeeds& needs)
{
    Checks checks;
    for (const std::string name : {"rmem_max", "rmem_default"}) {
        checks.push_back(
            judgeReceiveBuffer(name, tree.number("/proc/sys/net/core/" + name), needs));
    }
    const Checks interfaces = judgeMtu(readInterfaces(tree), needs);
    checks.insert(checks.end(), interfaces.begin(), interfaces.end());
    return checks;
}

} // namespace kxhost
