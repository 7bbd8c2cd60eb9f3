// Logging: five levels, written to the system log and to standard output.
//
// A source file says which module it belongs to with `#define KX_LOG_TAG "KX_PG_..."` and then uses
// KX_LOG_E, _W, _I, _D and _T with a printf format (a string literal) and its arguments. A level
// that is off costs one load and one compare and evaluates no argument; one that is on evaluates
// the arguments once for each sink that is written. Any thread.
#ifndef KX_LOG_H
#define KX_LOG_H

#include "kx_export.h"

#include <atomic>
#include <cstdint>
#include <cstdio>

#include <syslog.h>

// The host's switches, 0 at load. Plain variables that the host may change at any time, from any
// thread and with std::atomic_ref while a grab runs; they are read again for each message.

/// How much is written: 0 nothing, 1 errors, 2 also warnings, 3 information, 4 debug, 5 trace.
extern KX_API std::uint32_t gKxLogLevelLib;
/// Where to: sum of 1 = standard output and 2 = system log.
extern KX_API std::uint32_t gKxLogModeLib;
/// Number of this instance, part of the identity in the system log.
extern KX_API std::uint32_t gKxLogIdLib;

namespace kxlog {

inline constexpr std::uint32_t kToStdout = 1;
inline constexpr std::uint32_t kToSyslog = 2;

/// Longest text in the system log; what is longer is cut.
inline constexpr std::size_t kSyslogTextMax = 1022;

/// What one of the switches is now; as cheap as reading the variable itself.
inline std::uint32_t current(std::uint32_t& hostSwitch)
{
    return std::atomic_ref<std::uint32_t>(hostSwitch).load(std::memory_order_relaxed);
}

/// Writes one formatted line to the system log.
[[gnu::format(printf, 2, 3)]] void writeSyslog(int priority, const char* format, ...);

} // namespace kxlog

// Writes one message: SYSLOG_FORM is the parenthesised argument list of the system log's form.
#define KX_LOG_WRITE_(THRESHOLD, SYSLOG_FORM, STDOUT_LETTER, BODY, ...)                            \
    do {                                                                                           \
        if (kxlog::current(gKxLogLevelLib) >= (THRESHOLD)) [[unlikely]] {                          \
            if ((kxlog::current(gKxLogModeLib) & kxlog::kToSyslog) != 0) {                         \
                kxlog::writeSyslog SYSLOG_FORM;                                                    \
            }                                                                                      \
            if ((kxlog::current(gKxLogModeLib) & kxlog::kToStdout) != 0) {                         \
                std::fprintf(stdout, "[%s:" STDOUT_LETTER "]: " BODY,                              \
                             KX_LOG_TAG __VA_OPT__(, ) __VA_ARGS__);                               \
            }                                                                                      \
        }                                                                                          \
    } while (false)

/// Error; the system log shows file and line.
#define KX_LOG_E(BODY, ...)                                                                        \
    KX_LOG_WRITE_(1U,                                                                              \
                  (LOG_ERR, "[e|%s:%u] " BODY, __FILE__,                                           \
                   static_cast<unsigned>(__LINE__) __VA_OPT__(, ) __VA_ARGS__),                    \
                  "e", BODY __VA_OPT__(, ) __VA_ARGS__)

/// Warning, debug and trace; the system log shows the function. The _AS forms name it, for helpers
/// that speak for the function that they are a piece of.
#define KX_LOG_W_AS(FUNCTION, BODY, ...)                                                           \
    KX_LOG_WRITE_(2U, (LOG_WARNING, "[w|%s] " BODY, FUNCTION __VA_OPT__(, ) __VA_ARGS__), "w",     \
                  BODY __VA_OPT__(, ) __VA_ARGS__)
#define KX_LOG_D_AS(FUNCTION, BODY, ...)                                                           \
    KX_LOG_WRITE_(4U, (LOG_DEBUG, "[d|%s] " BODY, FUNCTION __VA_OPT__(, ) __VA_ARGS__), "d",       \
                  BODY __VA_OPT__(, ) __VA_ARGS__)
#define KX_LOG_T_AS(FUNCTION, BODY, ...)                                                           \
    KX_LOG_WRITE_(5U, (LOG_DEBUG, "[t|%s] " BODY, FUNCTION __VA_OPT__(, ) __VA_ARGS__), "t",       \
                  BODY __VA_OPT__(, ) __VA_ARGS__)
#define KX_LOG_W(BODY, ...) KX_LOG_W_AS(__func__, BODY __VA_OPT__(, ) __VA_ARGS__)
#define KX_LOG_D(BODY, ...) KX_LOG_D_AS(__func__, BODY __VA_OPT__(, ) __VA_ARGS__)
#define KX_LOG_T(BODY, ...) KX_LOG_T_AS(__func__, BODY __VA_OPT__(, ) __VA_ARGS__)

/// Information.
#define KX_LOG_I(BODY, ...)                                                                        \
    KX_LOG_WRITE_(3U, (LOG_INFO, "[i] " BODY __VA_OPT__(, ) __VA_ARGS__), "i",                     \
                  BODY __VA_OPT__(, ) __VA_ARGS__)

#endif
