// Who may open a USB camera: the rules of udev, and whether this user is among those they favour.
#ifndef KXHOST_DOCTOR_ACCESS_H
#define KXHOST_DOCTOR_ACCESS_H

#include "doctor/doctor_check.h"
#include "doctor/doctor_needs.h"
#include "doctor/doctor_process.h"
#include "doctor/doctor_usb.h"

#include <optional>
#include <string>
#include <vector>

namespace kxhost {

/// A rule that gives somebody access to the maker's cameras.
struct UdevRule {
    std::string file;
    std::string group;      ///< its members may; empty = none
    bool everybody = false; ///< whoever it is
    bool seated = false;    ///< who is logged in at this computer itself ("uaccess")
};

struct AccessFacts {
    bool toldRules = false;      ///< there is a folder of rules
    std::vector<UdevRule> rules; ///< those that give access, in the order in which they apply
    /// Groups of /etc/group that a rule names.
    struct Group {
        std::string name;
        std::uint64_t id = 0;
        std::vector<std::string> members;
    };
    std::vector<Group> groups;
};

AccessFacts readAccess(const Tree& tree);

/// The rules that give access in the text of one file; `file` is its name.
std::vector<UdevRule> rulesIn(const std::string& file, const std::string& text);

Check judgeRules(const AccessFacts& access, const DoctorNeeds& needs);
/// Whether this process is let in, by what udev has done to a camera that is plugged in, else by
/// the rules.
Check judgeGroup(const AccessFacts& access, const ProcessFacts& process,
                 const std::vector<UsbCamera>& cameras, const DoctorNeeds& needs);

} // namespace kxhost

#endif
