// What `kxhost doctor` prints, and what it tells the shell.
#ifndef KXHOST_DOCTOR_REPORT_H
#define KXHOST_DOCTOR_REPORT_H

#include "base/exit_code.h"
#include "doctor/doctor_check.h"

namespace kxhost {

/// kExitMend when something has to be mended, else kExitUnchecked when something could not be found
/// out, else kExitFine.
ExitCode doctorExitCode(const Checks& checks);

/// A table for people, each command below its line, for a terminal of 80 columns; commands stay in
/// one piece.
std::string doctorText(const Checks& checks);

/// One JSON object over several lines, with a final newline.
std::string doctorJson(const Checks& checks);

} // namespace kxhost

#endif
