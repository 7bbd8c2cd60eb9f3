// Numbers, times and codes as the report's reader wants them.
#include "report/report_words.h"

#include "base/exit_code.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace kxhost {
namespace {

constexpr const char* kMinus = "\u2212";

/// "3 min 5 s", or "3 min" when nothing is left of the smaller unit.
std::string twoUnits(std::uint64_t amount, std::uint64_t each, const char* large, const char* small)
{
    const std::string text = std::to_string(amount / each) + " " + large;
    return amount % each == 0 ? text : text + " " + std::to_string(amount % each) + " " + small;
}

} // namespace

std::string grouped(std::uint64_t number)
{
    constexpr std::size_t kGroup = 3;
    constexpr const char* kNarrowSpace = "\u202F";
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > kGroup;) {
        at -= kGroup;
        text.insert(at, kNarrowSpace);
    }
    return text;
}

std::string fixedText(double value, int digits)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f", digits, std::abs(value));
    const std::string digitsText = text.data();
    const bool isZero = digitsText.find_first_not_of("0.") == std::string::npos;
    return (value < 0 && !isZero ? kMinus : "") + digitsText;
}

std::string counted(std::uint64_t number, std::string_view word)
{
    return grouped(number) + " " + std::string(word) + (number == 1 ? "" : "s");
}

std::string timesText(std::uint64_t number)
{
    if (number == 1 || number == 2) {
        return number == 1 ? "once" : "twice";
    }
    return grouped(number) + " times";
}

std::string microseconds(std::int64_t us)
{
    constexpr double kMilli = 1e3;
    constexpr double kSecond = 1e6;
    const auto value = static_cast<double>(us);
    const double size = std::abs(value);
    if (size < kMilli) {
        return fixedText(value, 0) + " µs";
    }
    const bool milli = size < 0.9995 * kSecond; // from there on it would be rounded to 1000 ms
    const double scaled = value / (milli ? kMilli : kSecond);
    const int digits = std::abs(scaled) < 9.995 ? 2 : (std::abs(scaled) < 99.95 ? 1 : 0);
    return fixedText(scaled, digits) + (milli ? " ms" : " s");
}

std::string lengthOfTime(double seconds)
{
    constexpr double kMinute = 60;
    constexpr double kHour = 3600;
    constexpr double kDay = 86400;
    if (seconds < kMinute - 0.05) {
        return fixedText(seconds, seconds < 9.995 ? 2 : 1) + " s";
    }
    seconds = std::max(seconds, kMinute);
    if (seconds < kHour) {
        return twoUnits(static_cast<std::uint64_t>(seconds), 60, "min", "s");
    }
    if (seconds < kDay) {
        return twoUnits(static_cast<std::uint64_t>(seconds / kMinute), 60, "h", "min");
    }
    return twoUnits(static_cast<std::uint64_t>(seconds / kHour), 24, "d", "h");
}

std::string percentage(double share)
{
    constexpr double kSmallest = 0.0001; // 0.01 %
    if (share <= 0) {
        return "0 %";
    }
    if (share < kSmallest) {
        return "< 0.01 %";
    }
    if (share < 1 && share > 0.999) {
        return "> 99.9 %";
    }
    const double percent = share * 100;
    return fixedText(percent, percent < 1 ? 2 : (percent < 10 ? 1 : 0)) + " %";
}

std::string utcText(std::uint64_t us)
{
    constexpr std::uint64_t kSecond = 1'000'000;
    const auto seconds = static_cast<std::time_t>(us / kSecond);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 64> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &parts);
    return text.data();
}

std::string exitCodeText(int exitCode)
{
    switch (exitCode) {
    case kExitFine:
        return "fine";
    case kExitUsage:
        return "the command line was refused";
    case kExitConfiguration:
        return "the configuration was refused";
    case kExitNoCamera:
        return "no camera came in time";
    case kExitCamera:
        return "the camera failed or was lost";
    case kExitExport:
        return "something could not be written";
    case kExitLosses:
        return "more frames were lost than allowed";
    case kExitPlugin:
        return "the plug-in could not be loaded";
    case kExitNoLibrary:
        return "the camera library could not be loaded";
    case kExitLibraryAge:
        return "the camera library is of another release than the plug-in";
    case kExitLive:
        return "the address of the live page could not be had";
    default:
        return "a defect of kxhost";
    }
}

} // namespace kxhost
