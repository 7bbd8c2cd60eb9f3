// What the frames looked like: the contact sheet and the histograms of the report.
#include "report/base64.h"
#include "report/report_html.h"
#include "report/report_plot.h"
#include "report/report_sections.h"
#include "report/report_words.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace kxhost {
namespace {

struct Channel {
    const char* name;
    const char* cssClass;
};
constexpr Channel kGrey = {"Grey", "grey"};
constexpr std::array<Channel, 3> kColours = {
    {{"Red", "red"}, {"Green", "green"}, {"Blue", "blue"}}};

Channel channelOf(const Histogram& histogram, std::size_t index)
{
    return histogram.channels == 1 ? kGrey : kColours[index];
}

double secondsSince(std::uint64_t firstUs, std::uint64_t us)
{
    return static_cast<double>(static_cast<std::int64_t>(us - firstUs)) / 1e6;
}

std::string pictureOf(const Thumbnail& thumbnail, std::uint64_t firstUs)
{
    const std::string number = grouped(thumbnail.number);
    const std::string at = lengthOfTime(secondsSince(firstUs, thumbnail.steadyUs));
    const std::string image = "<img width=\"" + std::to_string(thumbnail.width) + "\" height=\"" +
                              std::to_string(thumbnail.height) + "\" alt=\"Frame " + number + ", " +
                              at + " after the first\" title=\"" + utcText(thumbnail.timestampUs) +
                              "\" src=\"data:image/png;base64," + base64(thumbnail.png) + "\">";
    return element("figure", image + element("figcaption", element("b", number) + " " + at)) + "\n";
}

/// The largest share of pixels that one bin has, over all channels.
double tallest(const Histogram& histogram)
{
    double most = 0;
    for (std::size_t i = 0; i < histogram.channels; ++i) {
        const ChannelHistogram& channel = histogram.each[i];
        const auto bin = static_cast<double>(std::ranges::max(channel.bins));
        const auto pixels = static_cast<double>(std::max<std::uint64_t>(channel.pixels, 1));
        most = std::max(most, bin / pixels);
    }
    return most;
}

Axis levelAxis(std::uint32_t levels)
{
    Axis axis;
    axis.high = levels - 1.0;
    for (std::uint32_t part = 0; part <= 4; ++part) {
        const std::uint32_t at = part == 4 ? levels - 1 : levels / 4 * part;
        axis.marks.push_back({static_cast<double>(at), std::to_string(at)});
    }
    return axis;
}

/// Of the square roots of shares, so that what is rare still shows.
Axis shareAxis(double highest)
{
    constexpr int kParts = 5;
    const double step = niceStep(std::max(highest, 1e-6), kParts);
    const double top = std::ceil(highest / step - 1e-9) * step;
    Axis axis;
    axis.high = std::sqrt(std::max(top, step));
    axis.unit = "%";
    for (const double part : {0.0, 0.04, 0.25, 1.0}) {
        std::array<char, 32> percent{};
        std::snprintf(percent.data(), percent.size(), "%.3g", part * axis.high * axis.high * 100);
        axis.marks.push_back({std::sqrt(part) * axis.high, percent.data()});
    }
    return axis;
}

std::string histogramPlot(const FrameHistogram& frame)
{
    constexpr int kHeight = 150;
    const Histogram& histogram = frame.histogram;
    const double perBin = histogram.levels / static_cast<double>(ChannelHistogram::kBins);
    Plot plot(levelAxis(histogram.levels), shareAxis(tallest(histogram)), kHeight);
    for (std::size_t i = 0; i < histogram.channels; ++i) {
        const ChannelHistogram& channel = histogram.each[i];
        const auto pixels = static_cast<double>(std::max<std::uint64_t>(channel.pixels, 1));
        std::vector<PlotPoint> ground;
        std::vector<PlotPoint> line;
        for (std::size_t bin = 0; bin < ChannelHistogram::kBins; ++bin) {
            const double level = static_cast<double>(bin) * perBin;
            ground.push_back({level, 0});
            line.push_back({level, std::sqrt(static_cast<double>(channel.bins[bin]) / pixels)});
        }
        const std::string name = channelOf(histogram, i).cssClass;
        plot.band("area " + name, {ground.front(), ground.back()}, line);
        plot.line("curve " + name, {line});
    }
    return plot.svg("Histogram of frame " + grouped(frame.number) +
                    ": share of the pixels at each level. The table below has its figures.");
}

/// The level that half of the pixels do not exceed, as far as the bins tell it.
std::uint64_t middleLevel(const ChannelHistogram& channel, std::uint32_t levels)
{
    std::uint64_t below = 0;
    std::size_t bin = 0;
    while (bin + 1 < ChannelHistogram::kBins && (below += channel.bins[bin]) * 2 < channel.pixels) {
        ++bin;
    }
    return bin * (levels / ChannelHistogram::kBins);
}

std::string shareText(std::uint64_t count, std::uint64_t of)
{
    return percentage(static_cast<double>(count) /
                      static_cast<double>(std::max<std::uint64_t>(of, 1)));
}

std::string histogramTable(const Histogram& histogram)
{
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 0; i < histogram.channels; ++i) {
        const ChannelHistogram& channel = histogram.each[i];
        const Channel name = channelOf(histogram, i);
        rows.push_back(
            {"<span class=\"key " + std::string(name.cssClass) + "\"></span>" + name.name,
             grouped(middleLevel(channel, histogram.levels)),
             shareText(channel.darkest, channel.pixels),
             shareText(channel.brightest, channel.pixels)});
    }
    return table({"Channel", "Median level", "Clipped dark (0)",
                  "Clipped bright (" + std::to_string(histogram.levels - 1) + ")"},
                 rows, true);
}

std::string histogramFigure(const char* title, const FrameHistogram& frame)
{
    if (frame.number == 0) {
        return "";
    }
    return figure(title, "Frame " + grouped(frame.number) + ".",
                  histogramPlot(frame) + histogramTable(frame.histogram));
}

} // namespace

std::string sheetSection(const Report& report)
{
    const std::vector<Thumbnail>& thumbnails = report.record.thumbnails;
    if (thumbnails.empty()) {
        return section("pictures", "Pictures",
                       element("p", "There are none: no frame was delivered."));
    }
    std::string sheet;
    for (const Thumbnail& each : thumbnails) {
        sheet += pictureOf(each, report.record.firstSteadyUs);
    }
    const std::string words =
        thumbnails.size() < report.record.frames
            ? counted(thumbnails.size(), "frame") + ", chosen evenly from the whole run"
            : "Every frame of the run";
    return section("pictures", "Pictures",
                   element("p", words + "; number, and time since the first.", "class=\"about\"") +
                       element("div", "\n" + sheet, "class=\"sheet\""));
}

std::string brightnessSection(const Report& report)
{
    const RunRecord& record = report.record;
    if (record.first.number == 0 && record.last.number == 0) {
        return "";
    }
    const bool one = record.first.number == record.last.number;
    const std::string figures = (one ? "" : histogramFigure("First frame", record.first)) +
                                histogramFigure(one ? "The one frame" : "Last frame", record.last);
    return section(
        "brightness", "Brightness",
        element("p",
                "How many of the pixels have each level. The scale of the shares is that of "
                "square roots, so that what is rare still shows. Pixels of a mosaic count "
                "for their own colour.",
                "class=\"about\"") +
            element("div", figures, "class=\"pair\""));
}

} // namespace kxhost
