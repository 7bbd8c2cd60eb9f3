// Where the time of a frame went, as the report shows it.
#include "report/report_html.h"
#include "report/report_sections.h"
#include "report/report_words.h"

namespace kxhost {
namespace {

struct Step {
    const char* name;
    const char* meaning;
    DurationProfile RunRecord::*profile;
    bool held; ///< the next frame is not fetched before it is over
};
constexpr Step kSteps[] = {
    {"Delivery", "from the time stamp to the arrival: exposure, readout, transfer",
     &RunRecord::delivery, false},
    {"Processing", "in the plug-in: time stamp, embedded information, conversion",
     &RunRecord::processing, true},
    {"Hand-over", "the copy into the queue, and the wait for a place in it", &RunRecord::handOver,
     true},
    {"In the queue", "until a writer took it", &RunRecord::queued, false},
    {"Writing", "encoding and writing its pictures, by one of the writers", &RunRecord::writing,
     false}};

std::string shareOfPeriod(const Step& step, std::int64_t us, std::uint32_t periodUs)
{
    return step.held && periodUs != 0 && us >= 0 ? percentage(static_cast<double>(us) / periodUs)
                                                 : "–";
}

std::string stepsTable(const RunRecord& record, std::uint32_t periodUs)
{
    std::vector<std::vector<std::string>> rows;
    for (const Step& step : kSteps) {
        const DurationProfile& profile = record.*step.profile;
        const std::int64_t late = profile.quantile(0.99);
        rows.push_back({step.name, microseconds(profile.quantile(0.5)), microseconds(late),
                        microseconds(profile.largest()), shareOfPeriod(step, late, periodUs),
                        step.meaning});
    }
    return table({"Step", "Median", "99 %", "Longest", "99 % as share of a period", "What it is"},
                 rows, true);
}

std::string budgetWords(const GrabSummary& summary)
{
    if (summary.framePeriodUs == 0) {
        return "The camera tells no frame period to hold the times against.";
    }
    std::string text = "A frame comes each " + microseconds(summary.framePeriodUs) +
                       "; processing and hand-over have to fit into that. ";
    text += summary.overBudget == 0
                ? "Every hand-over did"
                : element("b", counted(summary.overBudget, "hand-over")) + " did not";
    return text + "; the longest took " +
           microseconds(static_cast<std::int64_t>(summary.longestUs)) + ".";
}

std::string queueWords(const GrabSummary& summary)
{
    const ExportTotals& exported = summary.exported;
    std::string text =
        " The queue never held more than " + counted(exported.deepest, "frame") + "; ";
    text += exported.waits == 0
                ? "the grab never waited for a place in it."
                : "the grab waited " + timesText(exported.waits) + " for a place in it, " +
                      microseconds(static_cast<std::int64_t>(exported.waitUs)) + " in all.";
    if (exported.written != 0 && summary.seconds > 0 && exported.bytes != 0) {
        const double rate = static_cast<double>(exported.bytes) / 1e6 / summary.seconds;
        text += " Its pictures are " + fixedText(rate, 1) + " MB for each second of frames.";
    }
    return text;
}

} // namespace

std::string budgetSection(const Report& report)
{
    if (report.record.frames == 0) {
        return "";
    }
    return section(
        "budget", "Where the time went",
        element("p", budgetWords(report.summary) + queueWords(report.summary), "class=\"about\"") +
            stepsTable(report.record, report.summary.framePeriodUs));
}

} // namespace kxhost
