// How the report looks: its style sheet.
#ifndef KXHOST_REPORT_STYLE_H
#define KXHOST_REPORT_STYLE_H

namespace kxhost {

/// CSS for screens of any width, light and dark, and for paper.
extern const char* const kReportStyle;

} // namespace kxhost

#endif
