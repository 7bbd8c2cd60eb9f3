// The plain registers of one camera: what was written is what is read.
#ifndef FCSIM_REGISTER_FILE_H
#define FCSIM_REGISTER_FILE_H

#include <cstdint>
#include <optional>
#include <unordered_map>

namespace fcsim {

namespace registers {
inline constexpr std::uint32_t kPower = 0x610;
inline constexpr std::uint32_t kBayerTile = 0x1040;
inline constexpr std::uint32_t kAutoShutterRange = 0x1098;
inline constexpr std::uint32_t kAutoGainRange = 0x10A0;
inline constexpr std::uint32_t kGpioControl = 0x1110; ///< of pin 0; the next pins follow each 16 on
inline constexpr std::uint32_t kCycleTime = 0x1EA8;
} // namespace registers

/// Top bit of many registers: the feature is there. Writing does not change it.
inline constexpr std::uint32_t kPresenceBit = 0x8000'0000;

/// Values by address; a register that nobody set reads 0. Not thread-safe.
class RegisterFile {
public:
    /// A register that keeps its presence bit as `value` has it.
    void define(std::uint32_t address, std::uint32_t value) { values_[address] = {value, true}; }
    /// A register as the bus description sets it at power-up.
    void preset(std::uint32_t address, std::uint32_t value) { values_[address].value = value; }
    void write(std::uint32_t address, std::uint32_t value);
    /// Forgets everything but what is pinned.
    void clear() { values_.clear(); }
    std::uint32_t read(std::uint32_t address) const;

    /// Reads give `value` from now on, whatever is written.
    void pin(std::uint32_t address, std::uint32_t value) { pinned_[address] = value; }
    std::optional<std::uint32_t> pinned(std::uint32_t address) const;
    /// What holds: the pinned value, or the one that was written.
    std::uint32_t value(std::uint32_t address) const
    {
        return pinned(address).value_or(read(address));
    }

private:
    struct Register {
        std::uint32_t value = 0;
        bool keepsPresence = false;
    };

    std::unordered_map<std::uint32_t, Register> values_;
    std::unordered_map<std::uint32_t, std::uint32_t> pinned_;
};

} // namespace fcsim

#endif
