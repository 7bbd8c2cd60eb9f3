// What summary and metadata say of the ledger.
#include "export/ledger_report.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kxhost {
namespace {

using Json = nlohmann::ordered_json;

TEST(LedgerReport, ListsStretchesAndRangesInTheirOrder)
{
    FrameLedger ledger;
    ledger.captureStarted();
    ledger.lost(5, FrameCause::kTiming);
    ledger.delivered(6);
    ledger.retrievalFailed();
    ledger.retrievalFailed();
    ledger.delivered(8);
    ledger.cameraLost();
    ledger.captureStarted();
    ledger.delivered(0);
    ledger.notWritten(6);
    EXPECT_EQ(ledgerJson(ledger), Json::parse(R"({
        "counted_by_camera": true, "arrived": 4, "values": 5, "off_counter": 0, "stand_ins": 0,
        "delivered": 2, "causes": {"timing": 1, "retrieval_failed": 1, "export_failed": 1},
        "imbalance": 0, "failed_retrievals_without_frame": 1,
        "stretches": [{"stretch": 1, "begins": "start", "first": 5, "last": 8},
                      {"stretch": 2, "begins": "detached", "first": 0, "last": 0}],
        "stretches_not_listed": 0,
        "ranges": [{"stretch": 1, "first": 5, "last": 5, "causes": {"timing": 1}},
                   {"stretch": 1, "first": 6, "last": 6, "causes": {"export_failed": 1}},
                   {"stretch": 1, "first": 7, "last": 7, "causes": {"retrieval_failed": 1}}],
        "ranges_not_listed": 0})"));
}

TEST(LedgerReport, NumbersStretchesOnWhenOldOnesAreNotListed)
{
    FrameLedger ledger;
    for (std::size_t i = 0; i < FrameLedger::kMostStretches + 2; ++i) {
        ledger.captureStarted();
        ledger.delivered(0);
    }
    const Json json = ledgerJson(ledger);
    EXPECT_EQ(json["stretches_not_listed"], 2);
    EXPECT_EQ(json["stretches"][0]["stretch"], 3);
    EXPECT_NE(ledgerText(ledger).find("began anew 65 times"), std::string::npos);
}

TEST(LedgerReport, TextBalances)
{
    FrameLedger ledger;
    ledger.delivered(1);
    EXPECT_EQ(ledgerText(ledger), "ledger    1 value of the camera's counter = 1 delivered\n");
    ledger.delivered(1);
    ledger.delivered(3);
    ledger.delivered(3);
    EXPECT_EQ(ledgerText(ledger), "ledger    3 values of the camera's counter + 1 off it = "
                                  "4 delivered\n")
        << "the first repetition stands for 2";
    ledger.captureStarted();
    ledger.delivered(0);
    ledger.delivered(2);
    EXPECT_EQ(ledgerText(ledger), "ledger    6 values of the camera's counter + 1 off it = "
                                  "6 delivered + 1 camera skipped\n"
                                  "          the counter began anew 1 time; what fell between is "
                                  "not known\n");
}

TEST(LedgerReport, TextDoesNotCountWhatTheCameraDoesNot)
{
    FrameLedger ledger;
    ledger.lost({}, FrameCause::kTiming);
    ledger.delivered({});
    EXPECT_EQ(ledgerText(ledger),
              "ledger    2 frames (not counted by the camera) = 1 delivered + 1 timing\n");
    EXPECT_EQ(ledgerJson(ledger)["counted_by_camera"], false);
}

TEST(LedgerReport, TextTellsOfFailedRetrievals)
{
    FrameLedger ledger;
    ledger.delivered(1);
    ledger.retrievalFailed();
    EXPECT_EQ(ledgerText(ledger), "ledger    1 value of the camera's counter = 1 delivered\n"
                                  "          1 failed retrieval without a lost frame that is "
                                  "known of\n");
    ledger.retrievalFailed();
    EXPECT_NE(ledgerText(ledger).find("2 failed retrievals without"), std::string::npos);
    ledger.delivered(4);
    EXPECT_EQ(ledgerText(ledger), "ledger    4 values of the camera's counter = 2 delivered + "
                                  "2 retrieval failed\n");
}

TEST(LedgerReport, TextSaysWhatFailedRetrievalsStandForWithoutNumbers)
{
    FrameLedger ledger;
    ledger.delivered({});
    ledger.retrievalFailed();
    EXPECT_EQ(ledgerText(ledger),
              "ledger    1 frame (not counted by the camera) = 1 delivered\n"
              "          1 failed retrieval taken for lost frames, as the camera does not number "
              "them\n");
}

TEST(LedgerReport, WhatIsLostBeforeAFrameLeavesTheTimingOut)
{
    CauseCounts counts;
    counts[FrameCause::kTiming] = 1;
    EXPECT_TRUE(lostBeforeJson(counts).is_null());
    counts[FrameCause::kQueueFull] = 2;
    counts[FrameCause::kCameraSkipped] -= 3; // taken back
    EXPECT_EQ(lostBeforeJson(counts), Json::parse(R"({"camera_skipped": -3, "queue_full": 2})"));
}

} // namespace
} // namespace kxhost
