// Answers that take the place of the recording host's own, for hosts that answer nonsense.
#ifndef KX_TEST_HOST_OVERRIDES_H
#define KX_TEST_HOST_OVERRIDES_H

#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace kxtest {

/// The bits of each answer by the service's name; of a narrower type its lower ones. Changed only
/// while the plug-in does not run.
using HostOverrides = std::map<std::string, std::uint64_t, std::less<>>;
HostOverrides& hostOverrides();

/// The override of a service's answer, if there is one.
template <typename T>
std::optional<T> overrideOf(std::string_view service)
{
    const auto found = hostOverrides().find(service);
    if (found == hostOverrides().end()) {
        return std::nullopt;
    }
    T answer{};
    // The machine is little-endian. NOLINTNEXTLINE(bugprone-sizeof-expression): T may be a pointer
    std::memcpy(&answer, &found->second, sizeof(T));
    return answer;
}

} // namespace kxtest

#endif
