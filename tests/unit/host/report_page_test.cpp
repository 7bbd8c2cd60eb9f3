// Tests of the report's page.
#include "report/report_page.h"
#include "report/report_plot.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using namespace kxhost; // NOLINT(google-build-using-namespace): the parts of one page

std::size_t countOf(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

bool has(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

/// A run of three grey frames without a fault.
Report smallReport()
{
    Report report;
    report.facts = {.camera = "Tester TST-1, serial 424242",
                    .computer = "lab",
                    .hostVersion = "1.2.3",
                    .pluginVersion = "4.5.6",
                    .library = "simulated cameras",
                    .configuration = "camera.toml",
                    .inForce = "[grab]\nframes = 3\n"};
    GrabSummary& summary = report.summary;
    summary.reason = "Finished.";
    summary.retrieved = 4;
    summary.seconds = 0.1;
    summary.framePeriodUs = 33333;
    summary.exported.written = summary.exported.accepted = summary.exported.pictures = 3;
    summary.exported.bytes = 3'000'000;
    summary.exported.deepest = 2;
    summary.folder = "out";
    summary.ledger.captureStarted();
    summary.ledger.lost(9, FrameCause::kTiming);
    RunRecord& record = report.record;
    record.shape = {Instance::kRaw, 640, 480, "MONO8T", 0};
    record.firstTimestampUs = 1714571947'000000;
    record.lastTimestampUs = 1714571947'066666;
    record.firstSteadyUs = 1000;
    for (unsigned frame = 0; frame < 3; ++frame) {
        summary.ledger.delivered(10 + frame);
        ++record.frames;
        RunPoint point;
        point.atUs = frame * 33'333;
        point.deliveryUs = 5000 + frame;
        if (frame > 0) {
            point.intervalUs = 33'330 + 3 * frame;
            point.stampErrorUs = frame;
        }
        record.series.add(point);
        record.delivery.add(point.deliveryUs);
        record.processing.add(100);
        record.handOver.add(200);
        record.queued.add(300);
        record.writing.add(400);
        record.thumbnails.push_back({frame + 1,
                                     record.firstTimestampUs,
                                     1000 + frame * 33'333,
                                     4,
                                     3,
                                     {0x89, 'P', 'N', 'G'}});
    }
    record.first.number = 1;
    record.first.histogram.channels = 1;
    record.first.histogram.each[0].bins[128] = 50;
    record.first.histogram.each[0].bins[255] = 50;
    record.first.histogram.each[0].pixels = 100;
    record.first.histogram.each[0].brightest = 25;
    record.last = record.first;
    record.last.number = 3;
    auto change = std::make_shared<ConfigurationChange>();
    change->changed = {{"grab.frames", "3"}};
    summary.configurations = {change};
    summary.keysInForce = {{"grab.frames", {"3", 1}}};
    report.writtenUs = 1714571950'000000;
    return report;
}

TEST(ReportPage, SaysInWordsHowItWent)
{
    const std::string page = reportPage(smallReport());
    EXPECT_TRUE(has(page, "<h1>Finished, no frame lost</h1>")) << page;
    EXPECT_TRUE(has(page,
                    "<b>3 frames</b> were delivered in <b>0.10 s</b>, 30.0 a second. None was "
                    "lost. Finished. Exit code <data id=\"exit-code\" value=\"0\">0</data>."))
        << page;
    EXPECT_TRUE(has(page, "<header class=\"good\">"));
    for (const char* fact :
         {"Tester TST-1, serial 424242", "<dd>lab</dd>", "2024-05-01 13:59:07 UTC",
          "640 × 480 pixels, MONO8T", "33.3 ms (30.0 frames a second)",
          "3 pictures, 3.0 MB in <code>out</code>", "<code>camera.toml</code>", "simulated cameras",
          "kxhost 1.2.3, plug-in 4.5.6"}) {
        EXPECT_TRUE(has(page, fact)) << fact;
    }
}

TEST(ReportPage, TheRateIsThatOfDeliveredFrames)
{
    Report report = smallReport();
    report.summary.retrieved = 1001;
    report.summary.seconds = 10;
    report.summary.exported.written = 20;
    EXPECT_TRUE(has(reportPage(report), "<b>20 frames</b> were delivered in <b>10.0 s</b>, 2.0 a "
                                        "second."));
    report.summary.exported.written = 1;
    EXPECT_TRUE(has(reportPage(report), "<b>1 frame</b> was delivered."));
}

TEST(ReportPage, SaysWhatWasLostAndWhy)
{
    Report report = smallReport();
    report.summary.ledger.retrievalFailed();
    report.summary.ledger.retrievalFailed();
    report.summary.ledger.lost(13, FrameCause::kQueueFull);
    report.summary.ledger.delivered(1014);
    const std::string page = reportPage(report);
    EXPECT_TRUE(has(page, "<h1>Finished, with 1\u202F001 frames lost</h1>"))
        << page.substr(5000, 3000);
    EXPECT_TRUE(has(page, "<b>1\u202F001</b> were lost: 1\u202F000 camera skipped, 1 queue full."))
        << page;
    EXPECT_TRUE(has(page, "<data id=\"ledger-failed-without-frame\" value=\"2\">2</data> "
                          "retrievals ended without a frame, though none is known to be lost"))
        << page;
    EXPECT_TRUE(has(page, "<header class=\"fair\">"));
}

TEST(ReportPage, TakesFailedRetrievalsForLostFramesWhereNothingElseTells)
{
    Report report = smallReport();
    EXPECT_FALSE(has(reportPage(report), "ledger-failed-without-frame"));
    report.summary.ledger = FrameLedger();
    report.summary.ledger.delivered({});
    report.summary.ledger.retrievalFailed();
    const std::string page = reportPage(report);
    EXPECT_TRUE(has(page, "<b>1</b> was lost: 1 known by failed retrieval only.")) << page;
    EXPECT_TRUE(
        has(page, "value=\"1\">1</data> retrieval ended without a frame; each counts as lost"))
        << page;
}

TEST(ReportPage, SaysWhyItFailed)
{
    Report report = smallReport();
    report.summary.exitCode = 5;
    report.summary.reason = "The camera was lost: it fell silent.";
    const std::string page = reportPage(report);
    EXPECT_TRUE(has(page, "<h1>Failed: the camera failed or was lost</h1>"));
    EXPECT_TRUE(has(page, "The camera was lost: it fell silent. Exit code <data id=\"exit-code\" "
                          "value=\"5\">5</data>."));
    EXPECT_TRUE(has(page, "<header class=\"bad\">"));
}

TEST(ReportPage, TellsOfGapsAndChanges)
{
    Report report = smallReport();
    report.record.gaps = {{1000, 30'001'000}};
    report.record.timesAway = 300; // not all are listed
    report.record.awayUs = 600'000'000;
    report.record.configurations = {{0, 1}, {40'000, 2}};
    report.record.changes = 1;
    auto change = std::make_shared<ConfigurationChange>();
    change->number = 2;
    change->kind = ChangeKind::kLive;
    change->changed = {{"acquisition.gain", "5 dB"}, {"grab.frames", ""}};
    report.summary.configurations.push_back(change);
    report.summary.keysInForce = {{"acquisition.gain", {"5 dB", 2}}};
    const std::string page = reportPage(report);
    EXPECT_TRUE(
        has(page, "The camera was away 300 times, for 10 min. The configuration changed once."));
    EXPECT_EQ(countOf(page, "<rect class=\"away\""), 3U) << "in each figure";
    EXPECT_EQ(countOf(page, "<title>Configuration 2 from here on</title>"), 3U);
    EXPECT_TRUE(has(page, "the file was changed"));
    EXPECT_TRUE(has(page, "<code>grab.frames</code> not set any more"));
    EXPECT_TRUE(has(page,
                    "<th scope=\"row\"><code>acquisition.gain</code></th><td><code>5 dB</code>"
                    "</td><td>2</td>"));
    EXPECT_FALSE(has(page, "Without the first"));
    report.summary.configurations.erase(report.summary.configurations.begin());
    report.summary.configurations.push_back(change);
    EXPECT_TRUE(has(reportPage(report), "Without the first 1."));
}

TEST(ReportPage, ACameraThatCameBackHasNotChangedTheConfiguration)
{
    Report report = smallReport();
    report.record.configurations = {{0, 1}, {40'000, 2}};
    const std::string page = reportPage(report);
    EXPECT_FALSE(has(page, "The configuration changed"));
    EXPECT_TRUE(has(page, "A flag marks the first frame behind each further configuration."));
}

TEST(ReportPage, TheLedgerIsThatOfTheSummary)
{
    const std::string page = reportPage(smallReport());
    EXPECT_TRUE(has(page, "<data id=\"ledger-values\" value=\"4\">4</data> frames"));
    EXPECT_TRUE(has(page, "<data id=\"ledger-delivered\" value=\"3\">3</data></td><td>75 %</td>"));
    EXPECT_TRUE(has(page, "<data id=\"ledger-timing\" value=\"1\">1</data></td><td>25 %</td>"));
    EXPECT_FALSE(has(page, "ledger-camera_skipped"));
    EXPECT_TRUE(has(page, "the balance is even."));
}

TEST(ReportPage, ACameraThatDoesNotCountIsSaidToDoSo)
{
    Report report = smallReport();
    report.summary.ledger = {};
    report.summary.ledger.delivered({});
    const std::string page = reportPage(report);
    EXPECT_TRUE(has(page, "The camera does not number its frames; these are the 1 that arrived"));
}

TEST(ReportPage, PicturesAndHistogramsAreInThePage)
{
    const std::string page = reportPage(smallReport());
    EXPECT_EQ(countOf(page, "<img "), 3U);
    EXPECT_TRUE(has(page, "<img width=\"4\" height=\"3\" alt=\"Frame 2, 0.03 s after the first\" "
                          "title=\"2024-05-01 13:59:07 UTC\" "
                          "src=\"data:image/png;base64,iVBORw==\">"));
    EXPECT_EQ(countOf(page, "<path class=\"curve grey\""), 2U);
    EXPECT_TRUE(has(page, "<td>0 %</td><td>25 %</td>")) << "clipped";
    EXPECT_TRUE(has(page, "Clipped bright (255)"));
}

TEST(ReportPage, TheTimeOfAFrameIsHeldAgainstItsPeriod)
{
    Report report = smallReport();
    report.summary.overBudget = 2;
    report.summary.longestUs = 40'000;
    report.summary.exported.waits = 1;
    report.summary.exported.waitUs = 1500;
    const std::string page = reportPage(report);
    EXPECT_TRUE(has(page, "<b>2 hand-overs</b> did not; the longest took 40.0 ms."));
    EXPECT_TRUE(has(page, "the grab waited once for a place in it, 1.50 ms in all."));
    EXPECT_TRUE(has(page, "Its pictures are 30.0 MB for each second of frames."));
    EXPECT_TRUE(
        has(page, "Processing</th><td>100 µs</td><td>100 µs</td><td>100 µs</td><td>0.30 %</td>"));
}

/// A run of so many frames with an interval of 33.3 ms, but for one.
Report runWithSpike(int frames, std::int64_t spikeUs)
{
    Report report = smallReport();
    report.record.series = {};
    for (int frame = 0; frame < frames; ++frame) {
        RunPoint point;
        point.atUs = frame * 33'333;
        point.intervalUs = frame == frames / 2 ? spikeUs : 33'333 + frame % 3;
        report.record.series.add(point);
    }
    return report;
}

TEST(ReportPage, ASpikeDoesNotHideTheRest)
{
    const std::string page = reportPage(runWithSpike(200, 900'000));
    EXPECT_TRUE(has(page, "<b>33.3 ms to 900 ms, median 33.3 ms</b>. Spikes reach beyond the "
                          "figure."));
    EXPECT_TRUE(has(page, ">33.333</text>")) << "the axis is that of the others";
    EXPECT_FALSE(has(reportPage(runWithSpike(200, 33'334)), "Spikes reach"));
    const std::string few = reportPage(runWithSpike(20, 900'000));
    EXPECT_FALSE(has(few, "Spikes reach")) << "one of a few is no exception";
}

TEST(ReportPage, NoTextFromOutsideBecomesMarkup)
{
    const std::string evil = "<script>alert('x')</script>\"&";
    Report report = smallReport();
    report.facts = {evil, evil, evil, evil, evil, evil, evil};
    report.summary.reason = evil;
    report.summary.folder = evil;
    report.record.shape.codec = evil;
    auto change = std::make_shared<ConfigurationChange>();
    change->changed = {{evil, evil}};
    report.summary.configurations = {change, change};
    report.summary.keysInForce = {{evil, {evil, 1}}};
    const std::string page = reportPage(report);
    EXPECT_FALSE(has(page, "<script"));
    EXPECT_FALSE(has(page, "'x'"));
    EXPECT_GE(countOf(page, "&lt;script&gt;alert(&#39;x&#39;)&lt;/script&gt;&quot;&amp;"), 12U);
}

TEST(ReportPage, NeedsNothingElse)
{
    const std::string page = reportPage(smallReport());
    EXPECT_TRUE(page.starts_with("<!DOCTYPE html>\n"));
    EXPECT_TRUE(has(page, "http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                          "style-src 'unsafe-inline'; img-src data:;"));
    EXPECT_FALSE(has(page, "http:"));
    EXPECT_FALSE(has(page, "https:"));
    EXPECT_FALSE(has(page, "<script"));
    EXPECT_FALSE(has(page, "@import"));
    EXPECT_FALSE(has(page, "url("));
}

TEST(ReportPage, AGrabThatNeverBeganHasAPageToo)
{
    Report report;
    report.summary.exitCode = 9;
    report.summary.reason = "There is no camera library.";
    const std::string page = reportPage(report);
    EXPECT_TRUE(has(page, "<h1>Failed: the camera library could not be loaded</h1>"));
    EXPECT_TRUE(has(page, "<b>0 frames</b> were delivered. There is no camera library."));
    EXPECT_TRUE(has(page, "There are none: no frame was delivered."));
    EXPECT_TRUE(has(page, "No frame arrived."));
    EXPECT_FALSE(has(page, "does not number its frames"));
    EXPECT_TRUE(has(page, "It was never applied."));
    report.summary.passes = 1;
    EXPECT_TRUE(has(reportPage(report), "What became of it is not known"));
    EXPECT_FALSE(has(page, "id=\"timeline\""));
    EXPECT_FALSE(has(page, ">nan"));
    EXPECT_FALSE(has(page, ">inf"));
}

TEST(ReportPlot, ShapesStretchAndLettersDoNot)
{
    Axis x;
    x.high = 10;
    x.unit = "s";
    x.marks = {{0, "0"}, {5, "5"}};
    Axis y;
    y.high = 4;
    y.unit = "ms";
    y.marks = {{1, "1"}};
    Plot plot(x, y, 100);
    plot.line("a", {{{0, 0}, {5, 4}, {10, 1}}, {{2.5, 2}}});
    plot.band("b", {{0, 0}, {10, 0}}, {{0, 4}, {10, 4}});
    plot.stripe("c", 2, 3, "gone");
    plot.bar("d", 5, 5, 2);
    plot.flag(5, "2", "second");
    plot.flag(5.1, "3", "third");
    EXPECT_EQ(
        plot.svg("a label"),
        "<svg class=\"plot\" role=\"img\" aria-label=\"a label\" height=\"100\">"
        "<g class=\"grid\"><line x1=\"0\" x2=\"100%\" y1=\"75\" y2=\"75\"/>"
        "<text class=\"y\" x=\"-8\" y=\"75\">1</text>"
        "<line x1=\"0.00%\" x2=\"0.00%\" y1=\"100\" y2=\"104\"/>"
        "<text class=\"x\" x=\"0.00%\" y=\"118\">0</text>"
        "<line x1=\"50.00%\" x2=\"50.00%\" y1=\"100\" y2=\"104\"/>"
        "<text class=\"x\" x=\"50.00%\" y=\"118\">5 s</text>"
        "<text class=\"unit\" x=\"-8\" y=\"-14\">ms</text></g>"
        "<svg width=\"100%\" height=\"100\" viewBox=\"0 0 1000 100\" preserveAspectRatio=\"none\">"
        "<path class=\"a\" d=\"M0 100L500 0L1000 75M250 50h1\"/>"
        "<path class=\"b\" d=\"M0 100L1000 100L1000 0L0 0Z\"/>"
        "<rect class=\"c\" x=\"200\" y=\"0\" width=\"100\" "
        "height=\"100\"><title>gone</title></rect>"
        "<rect class=\"d\" x=\"500\" y=\"50\" width=\"1\" height=\"50\"/></svg>"
        "<g class=\"flag\"><title>second</title><line x1=\"50.00%\" x2=\"50.00%\" y1=\"-4\" "
        "y2=\"100\"/><text x=\"50.00%\" y=\"-8\">2</text></g>"
        "<g class=\"flag\"><title>third</title><line x1=\"51.00%\" x2=\"51.00%\" y1=\"-4\" "
        "y2=\"100\"/></g></svg>");
}

} // namespace
