// One line of what `kxhost doctor` found out about this computer.
#ifndef KXHOST_DOCTOR_CHECK_H
#define KXHOST_DOCTOR_CHECK_H

#include <string>
#include <vector>

namespace kxhost {

enum class Verdict {
    kOk,
    kWarn,    ///< wanted by some cameras or some uses only
    kFail,    ///< has to be mended
    kSkip,    ///< does not apply here
    kUnknown, ///< applies, but could not be found out
};

/// What was looked at. Texts are for people, without line ends.
struct Check {
    std::string name;    ///< one word that stays the same, "usbfs-memory"
    std::string subject; ///< which one, where there may be several: a network interface, a camera
    Verdict verdict = Verdict::kUnknown;
    std::string found;
    std::string needed;
    std::string command; ///< for a shell, mends it; empty = nothing to do, or nothing that a
                         ///< command can do
    std::string note;    ///< what else has to be known; empty = nothing
};

using Checks = std::vector<Check>;

/// How much depends on what is looked at.
enum class Weight {
    kNone,  ///< nothing: no camera of this kind is meant
    kMaybe, ///< nobody said what kind of camera there will be
    kSure,  ///< a camera of this kind is meant
};

/// What it means to have less than is needed.
constexpr Verdict lacking(Weight weight)
{
    switch (weight) {
    case Weight::kNone:
        return Verdict::kSkip;
    case Weight::kMaybe:
        return Verdict::kWarn;
    case Weight::kSure:
        break;
    }
    return Verdict::kFail;
}

} // namespace kxhost

#endif
