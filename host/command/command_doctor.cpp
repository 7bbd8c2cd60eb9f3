// kxhost doctor: what this computer lacks for cameras, and the commands that mend it.
#include "base/standard_output.h"
#include "command/commands.h"
#include "doctor/doctor_access.h"
#include "doctor/doctor_library.h"
#include "doctor/doctor_limits.h"
#include "doctor/doctor_network.h"
#include "doctor/doctor_report.h"

namespace kxhost {
namespace {

Checks examine(const CommandLine& commandLine, const Configuration& configuration)
{
    const DoctorOptions& options = commandLine.doctor;
    const Tree tree(options.root);
    const UsbFacts usb = readUsb(tree);
    const AccessFacts access = readAccess(tree);
    const ProcessFacts process = readProcess(tree);
    DoctorHints hints;
    hints.hasConfiguration = !commandLine.configuration.empty() || !commandLine.overrides.empty();
    hints.usb = options.usb || !usb.cameras.empty();
    hints.gige = options.gige;
    const DoctorNeeds needs = needsOf(configuration, hints);

    Checks checks = {judgeLibrary(readLibrary(commandLine.plugin, tree))};
    const Checks cameras = judgeCameras(usb);
    checks.insert(checks.end(), cameras.begin(), cameras.end());
    checks.push_back(judgeUsbMemory(usb.memoryMb, needs));
    checks.push_back(judgeRules(access, needs));
    checks.push_back(judgeGroup(access, process, usb.cameras, needs));
    const Checks network = checkNetwork(tree, needs);
    checks.insert(checks.end(), network.begin(), network.end());
    checks.push_back(judgeRealTimePriority(process, needs));
    checks.push_back(judgeLockedMemory(process, needs));
    return checks;
}

} // namespace

int commandDoctor(const CommandLine& commandLine)
{
    Configuration configuration;
    if (!configure(commandLine, configuration)) {
        return kExitConfiguration;
    }
    const Checks checks = examine(commandLine, configuration);
    const std::string text = commandLine.doctor.json ? doctorJson(checks) : doctorText(checks);
    return printReport(text, doctorExitCode(checks));
}

} // namespace kxhost
