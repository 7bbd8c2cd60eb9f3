// The sections of the report, each as markup.
#ifndef KXHOST_REPORT_SECTIONS_H
#define KXHOST_REPORT_SECTIONS_H

#include "report/report.h"

#include <string>

namespace kxhost {

/// How the grab went, in words; with the facts of the grab.
std::string verdictSection(const Report& report);
/// Frames of the whole run as small pictures.
std::string sheetSection(const Report& report);
/// Histograms of the first and the last frame.
std::string brightnessSection(const Report& report);
/// Intervals, time stamps, delivery and losses over time.
std::string timelineSection(const Report& report);
/// Every frame that the camera counted, delivered or with its cause.
std::string ledgerSection(const Report& report);
/// Where the time of a frame went, against the time that there was.
std::string budgetSection(const Report& report);
/// The configurations of the grab.
std::string configurationSection(const Report& report);

} // namespace kxhost

#endif
