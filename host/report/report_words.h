// Numbers, times and codes as the report's reader wants them.
#ifndef KXHOST_REPORT_WORDS_H
#define KXHOST_REPORT_WORDS_H

#include <cstdint>
#include <string>
#include <string_view>

namespace kxhost {

/// Digits in groups of three, with a narrow space between them: "12 345".
std::string grouped(std::uint64_t number);

/// So many digits behind the point; a minus sign that is one.
std::string fixedText(double value, int digits);

/// "1 frame", "2 frames".
std::string counted(std::uint64_t number, std::string_view word);

/// "once", "twice", "3 times".
std::string timesText(std::uint64_t number);

/// Up to three digits with the unit that suits: "125 µs", "3.21 ms", "1.50 s".
std::string microseconds(std::int64_t us);

/// How long something took, with the two units that matter: "0.42 s", "12.5 s", "3 min 5 s",
/// "2 h 14 min", "9 d 3 h".
std::string lengthOfTime(double seconds);

/// A share (0 to 1) in percent: "0 %", "0.02 %", "1.5 %", "100 %". A share that is not 0 is never
/// shown as 0, nor one below 1 as 100.
std::string percentage(double share);

/// "2026-11-21 15:40:12 UTC" of microseconds since 1970.
std::string utcText(std::uint64_t us);

/// What an exit code says, as the end of a sentence: "the camera failed or was lost".
std::string exitCodeText(int exitCode);

} // namespace kxhost

#endif
