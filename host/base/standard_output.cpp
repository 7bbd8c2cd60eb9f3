// Standard output for what a verb reports, wherever the plug-in's log goes meanwhile.
#include "base/standard_output.h"

#include "base/exit_code.h"
#include "base/notice.h"
#include "base/output_file.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace kxhost {
namespace {

int keptDescriptor = STDOUT_FILENO;

} // namespace

void keepStandardOutput()
{
    constexpr int kBehindTheStreams = STDERR_FILENO + 1;
    keptDescriptor = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, kBehindTheStreams);
}

std::string printReport(const std::string& text)
{
    std::fflush(stdout); // what was logged comes first
    const int code = writeAll(keptDescriptor, text.data(), text.size());
    return code == 0 || code == EPIPE ? "" : cannot("write", "standard output", code);
}

int printReport(const std::string& text, int exitCode)
{
    const std::string error = printReport(text);
    if (error.empty()) {
        return exitCode;
    }
    complain(error);
    return exitCode == kExitFine ? kExitExport : exitCode;
}

} // namespace kxhost
