// The record of one GPIO pin of the camera as a line of an I/O box.
#ifndef KX_PG_IO_PIN_H
#define KX_PG_IO_PIN_H

#include <cstdint>

namespace KxPGrey {

/// Not set, none, or as the camera has it.
inline constexpr std::uint32_t kIoNone = 0xFFFFFFFF;

/// What a pin is; other modes do nothing by themselves.
enum IoMode : std::uint8_t {
    kIoOutput = 1,
    kIoInput = 2,
};

/// What an output shows, or whether an input takes data.
enum IoSource : std::uint8_t {
    kIoStrobe = 2,
    kIoStrobeToo = 3,
    kIoUserData = 5,
};

constexpr bool isStrobe(std::uint8_t source)
{
    return source == kIoStrobe || source == kIoStrobeToo;
}

/// A pin as it is configured, and how far its data has come.
///
/// The grab thread writes what is configured (parameters, mode, source, inversion) of a pin that is
/// free while no configuration is pending, and hands it over by `cfgDirty`; all else is the control
/// thread's, which gives a pin back by `pinFree`. Both access records by the functions of
/// kx_pg_shared.h only, since a pin may be looked at while the other thread works on it.
struct IoPinState {
    /// Exposure time that the strobe's duration was capped with; 0 = no duration is configured.
    std::uint32_t expoAtCfgUs = 0;
    /// Strobe: delay in microseconds. Output: bits to send, 1 to 32. Input: how many polls a reply
    /// may take.
    std::uint32_t param0 = kIoNone;
    /// Strobe: duration in microseconds. Output: the word to send. Input: polls between symbols.
    std::uint32_t param1 = kIoNone;
    std::uint32_t dataWord = kIoNone; ///< output: queued or being sent; input: bits received so far
    std::uint32_t loopsLeft = 0;      ///< input: polls left before the reply is given up
    std::uint32_t pulseCount = 0;     ///< input: pulses of the current symbol
    std::uint32_t idleCount = 0;      ///< input: polls in a row at the idle level
    std::uint32_t activeCount = 0;    ///< input: polls in a row at the other level
    std::uint8_t bitCount = 0;        ///< output: bits to send; input: bits received
    std::uint8_t bitCountCfg = 0;     ///< output: bits as configured
    std::uint8_t pinIndex = 0;        ///< GPIO pin of this record
    std::uint8_t mode = 0;            ///< `IoMode`
    std::uint8_t src = 0;             ///< `IoSource`
    std::uint8_t inv = 0;             ///< inversion as configured
    std::uint8_t idleLevel = 0;       ///< output: its inversion; input: the level learnt at start
    std::uint8_t lastLevel = 0;       ///< input: sample before
    std::uint8_t rxWaitInit = 0;      ///< 1 = the idle level is still being learnt
    std::uint8_t pinFree = 1;         ///< 1 = no command or reply in progress
    std::uint8_t cfgDirty = 0;        ///< 1 = changed, to be applied by the control thread
};

/// Copies all of a record, and hands it over by its `pinFree`. The thread that may write `to`.
void copyIoPin(IoPinState& to, IoPinState& from);

} // namespace KxPGrey

#endif
