// The report of a grab as one page of HTML that needs nothing else.
#include "report/report_page.h"

#include "base/output_file.h"
#include "report/html_escape.h"
#include "report/report_html.h"
#include "report/report_sections.h"
#include "report/report_style.h"
#include "report/report_words.h"

namespace kxhost {
namespace {

constexpr const char* kHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; img-src data:; base-uri 'none'; form-action 'none'">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<meta name="referrer" content="no-referrer">
<link rel="icon" href="data:,">
)";

std::string title(const Report& report)
{
    std::string text = "Grab report";
    if (!report.facts.camera.empty()) {
        text += ": " + report.facts.camera;
    }
    if (report.record.firstTimestampUs != 0) {
        text += ", " + utcText(report.record.firstTimestampUs);
    }
    return element("title", htmlEscape(text)) + "\n";
}

} // namespace

std::string reportPage(const Report& report)
{
    const std::string sections = sheetSection(report) + brightnessSection(report) +
                                 timelineSection(report) + ledgerSection(report) +
                                 budgetSection(report) + configurationSection(report);
    const std::string foot =
        element("footer", "Written by kxhost " + htmlEscape(report.facts.hostVersion) + ", " +
                              utcText(report.writtenUs) +
                              ". This page needs no network and runs no program.");
    return kHead + title(report) + element("style", kReportStyle) + "\n</head>\n<body>\n" +
           verdictSection(report) + element("main", "\n" + sections) + "\n" + foot +
           "\n</body>\n</html>\n";
}

std::string writeReport(const Report& report, const std::string& path)
{
    const std::string page = reportPage(report);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(page.data());
    return writeWholeFile(path, {bytes, page.size()});
}

} // namespace kxhost
