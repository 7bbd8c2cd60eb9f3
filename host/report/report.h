// What the report of a grab is made of.
#ifndef KXHOST_REPORT_H
#define KXHOST_REPORT_H

#include "export/export_summary.h"
#include "report/run_recorder.h"

#include <cstdint>
#include <string>

namespace kxhost {

/// Who did what with which.
struct ReportFacts {
    std::string camera;        ///< as it is known; empty = it is not
    std::string computer;      ///< its name
    std::string hostVersion;   ///< of kxhost
    std::string pluginVersion; ///< empty = it was not loaded
    std::string library;       ///< the camera library, in words
    std::string configuration; ///< its file; empty = none
    std::string inForce;       ///< all keys as they began, as a configuration file
};

struct Report {
    ReportFacts facts;
    GrabSummary summary;
    RunRecord record;
    std::uint64_t writtenUs = 0; ///< when the report was made, us since 1970
};

} // namespace kxhost

#endif
