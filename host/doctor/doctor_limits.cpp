// The limits of a process that count for cameras: real-time priority and locked memory.
#include "doctor/doctor_limits.h"

namespace kxhost {
namespace {

/// Of the thread that drives the lines of an I/O box.
constexpr std::uint64_t kLinePriority = 98;

constexpr unsigned kCapabilityLockMemory = 14;
constexpr unsigned kCapabilityNice = 23;

/// Raises a limit for good, where sessions of the user begin.
std::string limitsCommand(const ProcessFacts& process, const std::string& item,
                          const std::string& value)
{
    return "echo \"" + userForShell(process) + " - " + item + " " + value +
           "\" | sudo tee /etc/security/limits.d/60-camera-" + item + ".conf";
}

/// A limit that the process may not raise itself is raised for the user's next session.
void mend(Check& check, const ProcessFacts& process, const ProcessLimit& limit,
          std::uint64_t needed, const std::string& raise, const std::string& command)
{
    if (limit.hard >= needed) {
        check.command = raise;
        return;
    }
    check.command = command;
    check.note += process.isRoot() ? "" : " Takes effect with the next login.";
}

constexpr std::uint64_t kKilo = 1024;

std::string kilobytesNeeded(std::uint64_t bytes)
{
    return std::to_string((bytes + kKilo - 1) / kKilo);
}

} // namespace

Check judgeRealTimePriority(const ProcessFacts& process, const DoctorNeeds& needs)
{
    Check check{"rt-priority", "", Verdict::kOk, "", std::to_string(kLinePriority), "", ""};
    if (process.told && process.may(kCapabilityNice)) {
        check.found = "any (CAP_SYS_NICE)";
        return check;
    }
    if (!process.realTimePriority) {
        check.verdict = Verdict::kUnknown;
        check.found = "no limit to be read";
        return check;
    }
    const ProcessLimit& limit = *process.realTimePriority;
    check.found = limit.soft == kUnlimited ? "unlimited" : std::to_string(limit.soft);
    if (limit.soft >= kLinePriority) {
        return check;
    }
    check.verdict = lacking(needs.lines);
    check.note = needs.lines == Weight::kSure
                     ? "The lines of the I/O box are not driven without."
                     : "For the lines of an I/O box, and for a grab that is started with chrt.";
    mend(check, process, limit, kLinePriority, "ulimit -S -r 98",
         limitsCommand(process, "rtprio", std::to_string(kLinePriority)));
    return check;
}

/// kxhost locks no memory itself.
Check judgeLockedMemory(const ProcessFacts& process, const DoctorNeeds& needs)
{
    Check check{
        "memory-lock", "", Verdict::kOk, "", kilobytesNeeded(needs.lockBytes) + " KB", "", ""};
    if (process.told && process.may(kCapabilityLockMemory)) {
        check.found = "any (CAP_IPC_LOCK)";
        return check;
    }
    if (!process.lockedMemory) {
        check.verdict = Verdict::kUnknown;
        check.found = "no limit to be read";
        return check;
    }
    const ProcessLimit& limit = *process.lockedMemory;
    check.found =
        limit.soft == kUnlimited ? "unlimited" : std::to_string(limit.soft / kKilo) + " KB";
    if (limit.soft >= needs.lockBytes) {
        return check;
    }
    check.verdict = Verdict::kWarn;
    check.note = "For hosts that lock their frame memory; kxhost does not.";
    mend(check, process, limit, needs.lockBytes, "ulimit -S -l " + kilobytesNeeded(needs.lockBytes),
         limitsCommand(process, "memlock", "unlimited"));
    return check;
}

} // namespace kxhost
