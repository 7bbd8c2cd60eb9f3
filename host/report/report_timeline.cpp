// How the grab went over time: the figures of the report over the whole run.
#include "report/report_html.h"
#include "report/report_plot.h"
#include "report/report_sections.h"
#include "report/report_words.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace kxhost {
namespace {

using Measure = Spread RunBucket::*;

constexpr int kHeight = 150;

double middleOf(const RunBucket& bucket)
{
    return static_cast<double>(bucket.fromUs + bucket.toUs) / 2;
}

double endOf(const RunRecord& record)
{
    const auto& buckets = record.series.buckets();
    return buckets.empty() ? 0 : static_cast<double>(buckets.back().toUs);
}

bool isParted(const RunRecord& record, const RunBucket& before, const RunBucket& bucket)
{
    return std::ranges::any_of(record.gaps, [&](const CameraGap& gap) {
        return gap.toUs > before.toUs && gap.toUs <= bucket.fromUs;
    });
}

/// Buckets that hold the measure, parted where the camera was away.
std::vector<std::vector<const RunBucket*>> piecesOf(const RunRecord& record, Measure measure)
{
    std::vector<std::vector<const RunBucket*>> pieces;
    const RunBucket* before = nullptr;
    for (const RunBucket& bucket : record.series.buckets()) {
        if ((bucket.*measure).count() == 0) {
            continue;
        }
        if (before == nullptr || isParted(record, *before, bucket)) {
            pieces.emplace_back();
        }
        pieces.back().push_back(&bucket);
        before = &bucket;
    }
    return pieces;
}

/// A measure over the whole run.
struct Whole {
    std::int64_t smallest = 0;
    std::int64_t median = 0;
    std::int64_t largest = 0;
};

/// Nothing = there are no values. The median weighs each bucket by its frames.
std::optional<Whole> wholeOf(const RunRecord& record, Measure measure)
{
    Spread ends;
    std::vector<std::pair<std::int64_t, double>> values; // with their weights
    double weight = 0;
    for (const RunBucket& bucket : record.series.buckets()) {
        const Spread& spread = bucket.*measure;
        ends.merge(spread);
        for (const std::int64_t value : spread.kept()) {
            const double each =
                static_cast<double>(spread.count()) / static_cast<double>(spread.kept().size());
            values.emplace_back(value, each);
            weight += each;
        }
    }
    if (values.empty()) {
        return std::nullopt;
    }
    std::ranges::sort(values);
    double below = 0;
    const auto middle = std::ranges::find_if(
        values, [&](const auto& value) { return (below += value.second) * 2 >= weight; });
    return Whole{ends.smallest(), middle->first, ends.largest()};
}

/// On top of the measure: a bucket may reach from one side of a gap to the other.
void drawEvents(Plot& plot, const RunRecord& record)
{
    for (const CameraGap& gap : record.gaps) {
        const auto from = static_cast<double>(gap.fromUs);
        const auto to = static_cast<double>(gap.toUs);
        plot.stripe("away", from, to,
                    "The camera was away for " + microseconds(gap.toUs - gap.fromUs));
    }
    for (const ConfigurationMoment& each : record.configurations) {
        if (each.number > 1) {
            plot.flag(static_cast<double>(each.atUs), std::to_string(each.number),
                      "Configuration " + std::to_string(each.number) + " from here on");
        }
    }
}

/// What the figure shows of a measure: without the two of a hundred buckets that stick out most, at
/// either end, which would leave nothing to be seen of the others.
std::pair<double, double> shownOf(const RunRecord& record, Measure measure, const Whole& whole)
{
    std::vector<std::int64_t> lows;
    std::vector<std::int64_t> highs;
    for (const RunBucket& bucket : record.series.buckets()) {
        if ((bucket.*measure).count() != 0) {
            lows.push_back((bucket.*measure).smallest());
            highs.push_back((bucket.*measure).largest());
        }
    }
    std::ranges::sort(lows);
    std::ranges::sort(highs);
    const std::size_t cut = lows.size() / 50;
    const auto low = static_cast<double>(lows[cut]);
    const auto high = static_cast<double>(highs[highs.size() - 1 - cut]);
    const double room = (high - low) / 4;
    return {std::max(static_cast<double>(whole.smallest), low - room),
            std::min(static_cast<double>(whole.largest), high + room)};
}

void drawMeasure(Plot& plot, const RunRecord& record, Measure measure)
{
    std::vector<std::vector<PlotPoint>> middles;
    for (const std::vector<const RunBucket*>& piece : piecesOf(record, measure)) {
        std::vector<PlotPoint> low;
        std::vector<PlotPoint> high;
        middles.emplace_back();
        for (const RunBucket* bucket : piece) {
            const Spread& spread = bucket->*measure;
            const double x = middleOf(*bucket);
            low.push_back({x, static_cast<double>(spread.smallest())});
            high.push_back({x, static_cast<double>(spread.largest())});
            middles.back().push_back({x, static_cast<double>(spread.median())});
        }
        plot.band("range", low, high);
    }
    plot.line("middle", middles);
}

std::string rangeText(const Whole& whole)
{
    return microseconds(whole.smallest) + " to " + microseconds(whole.largest) + ", median " +
           microseconds(whole.median);
}

std::string measureFigure(const RunRecord& record, Measure measure, const char* title,
                          const std::string& words)
{
    const std::optional<Whole> whole = wholeOf(record, measure);
    if (!whole) {
        return figure(title, words, element("p", "There is nothing to show.", "class=\"none\""));
    }
    const auto [low, high] = shownOf(record, measure, *whole);
    const Axis axis = microsecondAxis(low, high);
    const bool isCut = static_cast<double>(whole->smallest) < axis.low ||
                       static_cast<double>(whole->largest) > axis.high;
    Plot plot(elapsedAxis(endOf(record)), axis, kHeight);
    drawMeasure(plot, record, measure);
    drawEvents(plot, record);
    const std::string spikes = isCut ? " Spikes reach beyond the figure." : "";
    return figure(title, words + " " + element("b", rangeText(*whole)) + "." + spikes,
                  plot.svg(std::string(title) + " over the run: " + rangeText(*whole) + "."));
}

std::string lossFigure(const RunRecord& record)
{
    constexpr int kLossHeight = 70;
    std::int64_t most = 0;
    for (const RunBucket& bucket : record.series.buckets()) {
        most = std::max(most, bucket.lost);
    }
    if (most == 0) {
        return "";
    }
    Axis count;
    count.high = static_cast<double>(most);
    count.marks = {{0, "0"}, {count.high, grouped(static_cast<std::uint64_t>(most))}};
    Plot plot(elapsedAxis(endOf(record)), count, kLossHeight);
    for (const RunBucket& bucket : record.series.buckets()) {
        if (bucket.lost > 0) {
            plot.bar("loss", static_cast<double>(bucket.fromUs), static_cast<double>(bucket.toUs),
                     static_cast<double>(bucket.lost));
        }
    }
    drawEvents(plot, record);
    return figure("Frames lost", "Each bar is what was lost ahead of the frames of one bucket.",
                  plot.svg("Frames lost over the run, up to " +
                           grouped(static_cast<std::uint64_t>(most)) + " in a bucket."));
}

void addSpread(std::vector<std::string>& row, const Spread& spread)
{
    if (spread.count() == 0) {
        row.insert(row.end(), {"–", "–", "–"});
    } else {
        row.insert(row.end(), {microseconds(spread.smallest()), microseconds(spread.median()),
                               microseconds(spread.largest())});
    }
}

std::string bucketTable(const RunRecord& record)
{
    std::vector<std::vector<std::string>> rows;
    for (const RunBucket& bucket : record.series.buckets()) {
        std::vector<std::string> row = {lengthOfTime(static_cast<double>(bucket.fromUs) / 1e6),
                                        grouped(bucket.frames), std::to_string(bucket.lost)};
        addSpread(row, bucket.interval);
        addSpread(row, bucket.stampError);
        addSpread(row, bucket.delivery);
        rows.push_back(std::move(row));
    }
    return foldedAway(
        "The same as a table",
        table({"From", "Frames", "Lost", "Interval, least", "median", "most",
               "Time stamp error, least", "median", "most", "Delivery, least", "median", "most"},
              rows, true));
}

std::string bucketWords(const RunRecord& record)
{
    const auto& buckets = record.series.buckets();
    std::string words = "Time since the first frame. ";
    if (buckets.front().frames > 1) {
        words += "Each of " + counted(buckets.size(), "bucket") + " holds " +
                 counted(buckets.front().frames, "frame") +
                 ": the line is their median, the area reaches from the least to the most. ";
    }
    if (record.configurations.size() > 1) {
        words += "A flag marks the first frame behind each further configuration. ";
    }
    if (!record.gaps.empty()) {
        words += "A stripe is a time without the camera. ";
    }
    if (record.marksNotListed != 0) {
        words += counted(record.marksNotListed, "more mark") + " had no room. ";
    }
    return element("p", words, "class=\"about\"");
}

} // namespace

std::string timelineSection(const Report& report)
{
    const RunRecord& record = report.record;
    if (record.series.buckets().empty()) {
        return "";
    }
    const std::uint32_t period = report.summary.framePeriodUs;
    const std::string expected =
        period == 0 ? "" : " The camera's frame period is " + microseconds(period) + ".";
    return section(
        "timeline", "Over time",
        bucketWords(record) +
            measureFigure(record, &RunBucket::interval, "Interval",
                          "From one delivered frame's time stamp to the next." + expected) +
            measureFigure(record, &RunBucket::stampError, "Time stamp error",
                          "The same interval, less that of the camera's own clock: by how much a "
                          "time stamp is off its neighbour.") +
            measureFigure(record, &RunBucket::delivery, "Delivery",
                          "From the time stamp, which says when the exposure began, to the arrival "
                          "at this computer.") +
            lossFigure(record) + bucketTable(record));
}

} // namespace kxhost
