// Standard output for what a verb reports, wherever the plug-in's log goes meanwhile.
#ifndef KXHOST_STANDARD_OUTPUT_H
#define KXHOST_STANDARD_OUTPUT_H

#include <string>

namespace kxhost {

/// Remembers where standard output leads. REQUIRES: called before something diverts it.
void keepStandardOutput();

/// Writes a report to the standard output that was kept. Returns an empty text, or why it is not
/// there, one sentence. A reader of a pipe who has gone wanted no more, which is no error. The
/// calling thread waits for a slow reader.
std::string printReport(const std::string& text);

/// Prints the report of a verb that has come to `exitCode` and returns that, or kExitExport (and
/// tells why) when all was fine but the report is not there.
int printReport(const std::string& text, int exitCode);

} // namespace kxhost

#endif
