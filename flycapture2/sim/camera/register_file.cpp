// The plain registers of one camera: what was written is what is read.
#include "camera/register_file.h"

namespace fcsim {

void RegisterFile::write(std::uint32_t address, std::uint32_t value)
{
    Register& target = values_[address];
    const std::uint32_t kept = target.keepsPresence ? kPresenceBit : 0;
    target.value = (target.value & kept) | (value & ~kept);
}

std::uint32_t RegisterFile::read(std::uint32_t address) const
{
    const auto found = values_.find(address);
    return found == values_.end() ? 0 : found->second.value;
}

std::optional<std::uint32_t> RegisterFile::pinned(std::uint32_t address) const
{
    const auto found = pinned_.find(address);
    return found == pinned_.end() ? std::nullopt : std::optional(found->second);
}

} // namespace fcsim
