// What summary and metadata say of configurations.
#include "export/change_report.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kxhost {
namespace {

TEST(ChangeReport, SaysWhenHowAndWhat)
{
    ConfigHistory history;
    history.start({{"acquisition.gain", "3 dB"}}, 10);
    history.taken(ChangeKind::kLive, {{"acquisition.gain", ""}, {"lut.curve", "invert"}}, 20);
    EXPECT_EQ(changesJson(history.changes()), nlohmann::ordered_json::parse(R"([
        {"number": 1, "kind": "start", "at_us": 10, "changed": {"acquisition.gain": "3 dB"}},
        {"number": 2, "kind": "live", "at_us": 20,
         "changed": {"acquisition.gain": null, "lut.curve": "invert"}}])"));
}

} // namespace
} // namespace kxhost
