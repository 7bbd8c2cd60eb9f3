// Logging: the switches, and the system log's sink with its fixed buffer.
#include "kx_log.h"

#include <cstdarg>

std::uint32_t gKxLogLevelLib = 0;
std::uint32_t gKxLogModeLib = 0;
std::uint32_t gKxLogIdLib = 0;

namespace kxlog {

void writeSyslog(int priority, const char* format, ...)
{
    char text[1024];
    std::va_list arguments;
    va_start(arguments, format);
    static_cast<void>(std::vsnprintf(text, kSyslogTextMax + 1, format, arguments));
    va_end(arguments);
    // The text may contain per cent signs that came with an argument; it is never a format again.
    syslog(priority, "%s", text);
}

} // namespace kxlog
