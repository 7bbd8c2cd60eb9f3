// What must hold for the ledger of any grab, however it went.
#include "ledger_check.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>

namespace kxtest {

using Json = nlohmann::json;

namespace {

std::uint64_t number(const Json& object, const char* key)
{
    return object[key].get<std::uint64_t>();
}

std::uint64_t sum(const Json& object)
{
    std::uint64_t total = 0;
    for (const auto& item : object.items()) {
        total += item.value().get<std::uint64_t>();
    }
    return total;
}

/// Against the counts that other parts of kxhost keep for themselves.
void expectAgreement(const Json& summary, const Json& ledger)
{
    const Json& lost = summary["lost"];
    EXPECT_EQ(number(ledger, "arrived"), number(summary, "retrieved"));
    EXPECT_EQ(number(ledger, "delivered"), number(summary["exported"], "written"));
    EXPECT_EQ(lostBy(summary, "timing"), number(summary, "timing_only"));
    EXPECT_EQ(lostBy(summary, "queue_full"), number(lost, "queue_full"));
    EXPECT_EQ(lostBy(summary, "unusable"), number(lost, "refused"));
    EXPECT_EQ(lostBy(summary, "export_failed"),
              number(lost, "export") + number(lost, "after_export_error"));
    EXPECT_EQ(lostBy(summary, "retrieval_failed") +
                  number(ledger, "failed_retrievals_without_frame"),
              number(summary, "failed_retrievals"));
    EXPECT_EQ(number(lost, "total"), sum(lost) - number(lost, "total"));
    const bool isUncounted = ledger["counted_by_camera"] == false && ledger["arrived"] != 0;
    EXPECT_EQ(number(lost, "camera"),
              lostBy(summary, "camera_skipped") + lostBy(summary, "retrieval_failed") +
                  (isUncounted ? number(ledger, "failed_retrievals_without_frame") : 0));
}

void expectBalance(const Json& ledger)
{
    EXPECT_EQ(ledger["imbalance"], 0);
    EXPECT_EQ(number(ledger, "values") + number(ledger, "off_counter"),
              number(ledger, "delivered") + sum(ledger["causes"]));
    std::uint64_t values = 0;
    for (const Json& stretch : ledger["stretches"]) {
        values += number(stretch, "last") - number(stretch, "first") + 1;
    }
    if (ledger["stretches_not_listed"] == 0) {
        EXPECT_EQ(values, number(ledger, "values"));
    }
}

/// Whether each value is known by itself: none is doubtful and the lists are complete.
bool isExact(const Json& ledger)
{
    return ledger["counted_by_camera"] == true && ledger["off_counter"] == 0 &&
           ledger["stand_ins"] == 0 && ledger["stretches_not_listed"] == 0 &&
           ledger["ranges_not_listed"] == 0;
}

/// Every value of every stretch is a frame's or lies in one range, and none is both.
void expectPartition(const Json& ledger, const std::vector<Json>& frames)
{
    using Value = std::pair<std::uint64_t, std::uint64_t>; // stretch and value
    std::map<Value, int> times;
    Value before{0, 0};
    for (const Json& frame : frames) {
        const Value value{number(frame, "stretch"), number(frame, "frame_counter")};
        EXPECT_LT(before, value) << "out of order: " << frame;
        before = value;
        ++times[value];
    }
    for (const Json& range : ledger["ranges"]) {
        EXPECT_EQ(sum(range["causes"]), number(range, "last") - number(range, "first") + 1);
        for (std::uint64_t value = number(range, "first"); value <= number(range, "last");
             ++value) {
            ++times[{number(range, "stretch"), value}];
        }
    }
    std::uint64_t accounted = 0;
    for (const Json& stretch : ledger["stretches"]) {
        for (std::uint64_t value = number(stretch, "first"); value <= number(stretch, "last");
             ++value) {
            EXPECT_EQ((times[{number(stretch, "stretch"), value}]), 1)
                << value << " of " << stretch;
            ++accounted;
        }
    }
    EXPECT_EQ(times.size(), accounted) << "there are frames outside of all stretches";
}

/// Between two frames of a stretch exactly those are missing that the second one tells of.
void expectGapsTold(const std::vector<Json>& frames)
{
    for (std::size_t i = 1; i < frames.size(); ++i) {
        const Json& before = frames[i - 1];
        const Json& frame = frames[i];
        if (frame["stretch"] == before["stretch"]) {
            const std::uint64_t missing =
                number(frame, "frame_counter") - number(before, "frame_counter") - 1;
            const std::uint64_t told =
                frame.contains("lost_before") ? sum(frame["lost_before"]) : 0;
            // The first frame of a capture is no loss, but takes a number.
            EXPECT_TRUE(told == missing || told + 1 == missing) << frame;
        }
    }
}

} // namespace

std::uint64_t lostBy(const Json& summary, const char* cause)
{
    return summary["ledger"]["causes"].value(cause, std::uint64_t{0});
}

void expectLedger(const Json& summary, const std::vector<Json>& frames)
{
    const Json& ledger = summary["ledger"];
    expectAgreement(summary, ledger);
    expectBalance(ledger);
    if (isExact(ledger) && frames.size() == number(ledger, "delivered")) {
        expectPartition(ledger, frames);
        if (lostBy(summary, "export_failed") == 0) {
            expectGapsTold(frames);
        }
    }
}

} // namespace kxtest
