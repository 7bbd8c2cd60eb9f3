// Who may open a USB camera: the rules of udev, and whether this user is among those they favour.
#include "doctor/doctor_access.h"

#include <algorithm>
#include <array>
#include <map>
#include <regex>
#include <sstream>

namespace kxhost {
namespace {

/// Where rules are, the strongest first: a file hides those of its name in later folders.
constexpr std::array kRuleFolders = {"/etc/udev/rules.d", "/run/udev/rules.d",
                                     "/usr/local/lib/udev/rules.d", "/usr/lib/udev/rules.d",
                                     "/lib/udev/rules.d"};

/// The file that acts on "uaccess"; rules behind it set it in vain.
constexpr std::string_view kSeatRules = "73-seat-late.rules";

/// The group that Debian gives devices like these to.
constexpr const char* kUsualGroup = "plugdev";

/// The lines of the file that say something, with continued ones put together.
std::vector<std::string> ruleLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::string whole;
    for (const std::string& line : linesOf(text)) {
        whole += line;
        if (whole.ends_with('\\')) {
            whole.pop_back();
            continue;
        }
        if (whole.find_first_not_of(" \t") != std::string::npos &&
            whole[whole.find_first_not_of(" \t")] != '#') {
            lines.push_back(whole);
        }
        whole.clear();
    }
    return lines;
}

/// What the line assigns to a key, or compares it with, by this operator; empty = nothing.
std::string valueIn(const std::string& line, const std::string& key, const std::string& operation)
{
    const std::regex pattern("(?:^|[,\\s])" + key + "\\s*" + operation + "\\s*\"([^\"]*)\"");
    std::smatch match;
    return std::regex_search(line, match, pattern) ? match[1].str() : "";
}

/// Whether the line picks (`operation` "==") or leaves out ("!=") the maker's devices.
bool namesVendor(const std::string& line, const std::string& operation)
{
    const std::regex pattern("(idVendor|ID_VENDOR_ID)\\}\\s*" + operation +
                             "\\s*\"([^\"]*\\|)?1e10(\\|[^\"]*)?\"");
    return std::regex_search(line, pattern);
}

/// What one line does; the rule gives nobody access when it says nothing of that.
UdevRule readRule(const std::string& file, const std::string& line)
{
    constexpr unsigned long kGroupMay = 060;
    constexpr unsigned long kOthersMay = 006;
    constexpr int kOctal = 8;
    UdevRule rule;
    rule.file = file;
    rule.group = valueIn(line, "GROUP", ":?=");
    const std::string mode = valueIn(line, "MODE", ":?=");
    // Without a mode udev lets the group read and write.
    const unsigned long bits =
        mode.empty() ? kGroupMay : std::strtoul(mode.c_str(), nullptr, kOctal);
    if ((bits & kGroupMay) != kGroupMay) {
        rule.group.clear();
    }
    rule.everybody = (bits & kOthersMay) == kOthersMay;
    rule.seated = valueIn(line, "TAG", "\\+?=") == "uaccess" && file < kSeatRules;
    return rule;
}

/// Text of each file of rules by its name.
std::map<std::string, std::string> ruleFiles(const Tree& tree, bool& isTold)
{
    std::map<std::string, std::string> files;
    for (const std::filesystem::path folder : kRuleFolders) {
        const auto names = tree.names(folder.native());
        isTold = isTold || names.has_value();
        for (const std::string& name : names.value_or(std::vector<std::string>())) {
            if (name.ends_with(".rules")) {
                files.try_emplace(name, tree.text((folder / name).native()).value_or(""));
            }
        }
    }
    return files;
}

std::vector<std::string> splitAt(const std::string& text, char separator)
{
    std::istringstream stream(text);
    std::vector<std::string> parts;
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

std::vector<AccessFacts::Group> readGroups(const Tree& tree, const std::vector<UdevRule>& rules)
{
    constexpr std::size_t kNumber = 2;
    constexpr std::size_t kMembers = 3;
    std::vector<AccessFacts::Group> groups;
    for (const std::string& line : linesOf(tree.text("/etc/group").value_or(""))) {
        const std::vector<std::string> fields = splitAt(line, ':');
        const auto id = fields.size() > kNumber ? wholeNumber(fields[kNumber]) : std::nullopt;
        if (id && std::ranges::find(rules, fields[0], &UdevRule::group) != rules.end()) {
            groups.push_back({fields[0], *id,
                              fields.size() > kMembers ? splitAt(fields[kMembers], ',')
                                                       : std::vector<std::string>()});
        }
    }
    return groups;
}

const AccessFacts::Group* findGroup(const AccessFacts& access, const std::string& name)
{
    const auto group = std::ranges::find(access.groups, name, &AccessFacts::Group::name);
    return group == access.groups.end() ? nullptr : &*group;
}

std::string namesOf(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}

std::string whoText(const UdevRule& rule)
{
    std::vector<std::string> who;
    if (rule.everybody) {
        who.emplace_back("everybody");
    }
    if (!rule.group.empty()) {
        who.push_back("group " + rule.group);
    }
    if (rule.seated) {
        who.emplace_back("who sits here");
    }
    return namesOf(who);
}

/// The file is called like that of an installation, so that one takes the place of the other.
std::string ruleCommand()
{
    return "echo 'SUBSYSTEM==\"usb\", ATTR{idVendor}==\"" + std::string(kCameraVendor) +
           "\", MODE=\"0660\", GROUP=\"" + kUsualGroup +
           "\", TAG+=\"uaccess\"' | sudo tee /etc/udev/rules.d/60-driver-pointgrey.rules && sudo "
           "udevadm "
           "control --reload && sudo udevadm trigger --subsystem-match=usb";
}

/// How somebody comes into the group.
void mendGroup(Check& check, const AccessFacts& access, const ProcessFacts& process,
               const std::string& name)
{
    const AccessFacts::Group* const group = findGroup(access, name);
    if (group != nullptr && !process.userName.empty() &&
        std::ranges::find(group->members, process.userName) != group->members.end()) {
        check.command = "newgrp " + name;
        check.note = "The group is given to the user, but this session is older: log in again.";
        return;
    }
    check.command = (group == nullptr ? "sudo groupadd --system " + name + " && " : "") +
                    "sudo usermod -a -G " + name + " \"" + userForShell(process) + "\"";
    check.note = "Takes effect with the next login.";
}

/// Whether the process is let in by name; `who` becomes the reason.
bool isFavoured(const AccessFacts& access, const ProcessFacts& process, std::string& who)
{
    for (const UdevRule& rule : access.rules) {
        if (rule.everybody) {
            who = "everybody may";
            return true;
        }
        const AccessFacts::Group* const group = findGroup(access, rule.group);
        if (group != nullptr &&
            std::ranges::find(process.groups, group->id) != process.groups.end()) {
            who = "in group " + rule.group;
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<UdevRule> rulesIn(const std::string& file, const std::string& text)
{
    const std::vector<std::string> lines = ruleLines(text);
    // A file may jump over all of its rules for other devices, instead of naming these in each.
    const bool isAll =
        std::ranges::any_of(lines, [](const std::string& line) { return namesVendor(line, "!="); });
    std::vector<UdevRule> rules;
    for (const std::string& line : lines) {
        const UdevRule rule = readRule(file, line);
        if ((isAll || namesVendor(line, "==")) && !whoText(rule).empty()) {
            rules.push_back(rule);
        }
    }
    return rules;
}

AccessFacts readAccess(const Tree& tree)
{
    AccessFacts facts;
    for (const auto& [name, text] : ruleFiles(tree, facts.toldRules)) {
        const std::vector<UdevRule> rules = rulesIn(name, text);
        facts.rules.insert(facts.rules.end(), rules.begin(), rules.end());
    }
    facts.groups = readGroups(tree, facts.rules);
    return facts;
}

Check judgeRules(const AccessFacts& access, const DoctorNeeds& needs)
{
    Check check{
        "udev-rule", "", Verdict::kOk, "", "access for vendor " + std::string(kCameraVendor),
        "",          ""};
    if (!access.toldRules) {
        check.verdict = Verdict::kSkip;
        check.found = "no udev here";
        return check;
    }
    if (!access.rules.empty()) {
        const UdevRule& last = access.rules.back();
        check.found = last.file + ": " + whoText(last);
        return check;
    }
    check.found = "none";
    check.verdict = lacking(needs.usb);
    check.note = needs.usb == Weight::kSure ? "" : "Only USB cameras need it.";
    if (check.verdict != Verdict::kSkip) {
        check.command = ruleCommand();
    }
    return check;
}

Check judgeGroup(const AccessFacts& access, const ProcessFacts& process,
                 const std::vector<UsbCamera>& cameras, const DoctorNeeds& needs)
{
    Check check{"group", "", Verdict::kOk, "", "may open the camera", "", ""};
    if (!process.told) {
        check.verdict = Verdict::kUnknown;
        check.found = "who this is cannot be read";
        return check;
    }
    const auto isUsable = [](const UsbCamera& camera) { return camera.usable; };
    if (process.isRoot() || isFavoured(access, process, check.found)) {
        check.found = process.isRoot() ? "root" : check.found;
        return check;
    }
    if (!cameras.empty() && std::ranges::all_of(cameras, isUsable)) {
        check.found = "may open " + cameras.front().node;
        return check;
    }
    const std::string who =
        process.userName.empty() ? "user " + std::to_string(process.user) : process.userName;
    const auto grouped = std::ranges::find_if(
        access.rules, [](const UdevRule& rule) { return !rule.group.empty(); });
    if (grouped == access.rules.end()) {
        check.verdict = access.rules.empty() ? Verdict::kSkip : lacking(needs.usb);
        check.found = access.rules.empty() ? "no rule names one" : who + " only when sitting here";
        check.note = access.rules.empty() ? "" : "Not over the network, and no service.";
        check.command = check.verdict == Verdict::kSkip ? "" : ruleCommand();
        return check;
    }
    check.verdict = lacking(needs.usb);
    check.found = who + " is not in group " + grouped->group;
    if (check.verdict != Verdict::kSkip) {
        mendGroup(check, access, process, grouped->group);
    }
    return check;
}

} // namespace kxhost
