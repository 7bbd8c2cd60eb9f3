// What the system lets this process do: who it is, and its limits.
#ifndef KXHOST_DOCTOR_PROCESS_H
#define KXHOST_DOCTOR_PROCESS_H

#include "doctor/doctor_tree.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kxhost {

/// A limit of the process; `kUnlimited` = none.
struct ProcessLimit {
    std::uint64_t soft = 0; ///< in force
    std::uint64_t hard = 0; ///< up to where the process itself may raise it
};
constexpr std::uint64_t kUnlimited = ~std::uint64_t{0};

struct ProcessFacts {
    bool told = false;                            ///< what follows up to the limits could be read
    std::uint64_t user = 0;                       ///< effective user id
    std::string userName;                         ///< empty = it has none in /etc/passwd
    std::vector<std::uint64_t> groups;            ///< all that count
    std::uint64_t capabilities = 0;               ///< effective ones, a bit each
    std::optional<ProcessLimit> realTimePriority; ///< nothing = it cannot be read
    std::optional<ProcessLimit> lockedMemory;     ///< bytes; the same

    bool isRoot() const { return user == 0; }
    /// `capability`: number of its bit.
    bool may(unsigned capability) const { return (capabilities >> capability & 1U) != 0; }
};

ProcessFacts readProcess(const Tree& tree);

/// The user's name for a command in double quotes.
std::string userForShell(const ProcessFacts& process);

} // namespace kxhost

#endif
