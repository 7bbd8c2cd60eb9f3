// What is counted while a grab runs.
#ifndef KXHOST_GRAB_COUNTS_H
#define KXHOST_GRAB_COUNTS_H

#include <atomic>
#include <cstdint>

namespace kxhost {

/// Written by the grab thread, read by the one that shows the progress; each number for itself.
struct GrabCounts {
    std::atomic<std::uint32_t> passes = 0;     ///< calls of the plug-in
    std::atomic<std::uint64_t> retrieved = 0;  ///< frames that arrived
    std::atomic<std::uint64_t> missing = 0;    ///< failed retrievals
    std::atomic<std::uint64_t> timing = 0;     ///< arrived frames that only started the timing
    std::atomic<std::uint64_t> lost = 0;       ///< frames that were not handed to the writers
    std::atomic<std::uint64_t> refused = 0;    ///< hand-overs without usable pixels
    std::atomic<std::uint64_t> exported = 0;   ///< frames handed to the writers
    std::atomic<std::uint64_t> overBudget = 0; ///< hand-overs longer than the frame period
    std::atomic<std::uint64_t> longestUs = 0;  ///< longest hand-over
    std::atomic<std::uint64_t> firstUs = 0;    ///< first arrival, on the steady clock
    std::atomic<std::uint64_t> lastUs = 0;     ///< last arrival
    std::atomic<std::uint64_t> words = 0;      ///< received on an I/O line
    std::atomic<std::uint32_t> wordData = 0;   ///< the last of them
    std::atomic<std::uint32_t> wordBits = 0;   ///< and how many bits it has
    std::atomic<std::uint64_t> wordFrame = 0;  ///< number of the exported frame that brought it
    std::atomic<std::uint32_t> framePeriodUs = 0;
    std::atomic<std::uint64_t> tables = 0; ///< look-up tables that were computed from pictures
    std::atomic<bool> capturing = false;
    std::atomic<bool> away = false; ///< the camera was lost, and is waited for
    std::atomic<bool> over = false; ///< no frame comes any more; what waits is written
};

} // namespace kxhost

#endif
