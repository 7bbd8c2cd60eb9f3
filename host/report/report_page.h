// The report of a grab as one page of HTML that needs nothing else.
#ifndef KXHOST_REPORT_PAGE_H
#define KXHOST_REPORT_PAGE_H

#include "report/report.h"

#include <string>

namespace kxhost {

/// The whole page. It loads nothing, runs nothing, and forbids both to whatever got into it. Every
/// text that comes from outside is escaped. docs/report.md describes it.
std::string reportPage(const Report& report);

/// Writes the page to a file, whole or not at all. Returns an empty text, or the reason as one
/// sentence.
std::string writeReport(const Report& report, const std::string& path);

} // namespace kxhost

#endif
