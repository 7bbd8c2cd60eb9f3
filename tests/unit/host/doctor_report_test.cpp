// The table, the JSON and the exit code of kxhost doctor.
#include "doctor/doctor_report.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>

namespace kxhost {
namespace {

Check check(Verdict verdict)
{
    return {"mtu", "eth1", verdict, "1500 bytes", "9000 bytes", "", ""};
}

TEST(DoctorReport, TheWorstVerdictIsTheExitCode)
{
    EXPECT_EQ(doctorExitCode({}), kExitFine);
    EXPECT_EQ(doctorExitCode({check(Verdict::kOk), check(Verdict::kWarn), check(Verdict::kSkip)}),
              kExitFine);
    EXPECT_EQ(doctorExitCode({check(Verdict::kOk), check(Verdict::kUnknown)}), kExitUnchecked);
    EXPECT_EQ(doctorExitCode({check(Verdict::kFail), check(Verdict::kUnknown)}), kExitMend);
}

TEST(DoctorReport, EachLineHasItsColumns)
{
    const std::string text = doctorText({check(Verdict::kOk)});
    EXPECT_EQ(text, "verdict  check           found                        needed\n"
                    "ok       mtu             eth1: 1500 bytes             9000 bytes\n"
                    "\nNothing has to be mended.\n");
}

TEST(DoctorReport, LongWordsGetALineOfTheirOwn)
{
    Check longer = check(Verdict::kFail);
    longer.found = std::string(28, 'x');
    longer.subject = "";
    EXPECT_EQ(doctorText({longer}).find(std::string(28, 'x') + " 9000") != std::string::npos, true);
    longer.found += 'x';
    EXPECT_NE(doctorText({longer}).find("x\n" + std::string(54, ' ') + "9000 bytes\n"),
              std::string::npos);
}

TEST(DoctorReport, CommandsStayInOnePieceAndNotesAreWrapped)
{
    Check mended = check(Verdict::kFail);
    mended.command = "echo " + std::string(200, 'x');
    mended.note = "A sentence of many words that is much too long for a terminal of eighty "
                  "columns, and is wrapped.";
    const std::string text = doctorText({mended});
    EXPECT_NE(text.find("\n         $ " + mended.command + "\n"), std::string::npos) << text;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_TRUE(line.size() <= 80 || line.find("$ echo") == 9) << line;
    }
    EXPECT_NE(text.find("\n1 to mend.\n"), std::string::npos) << text;
}

TEST(DoctorReport, WhatOthersHaveCalledThingsDoesNotSteerTheTerminal)
{
    Check hostile = check(Verdict::kWarn);
    hostile.subject = "Flea\x1b[2J";
    hostile.found = "held by a\nb\rc (process 7)";
    hostile.note = "See \x1b]0;x\x07.";
    hostile.command = "kill \x1b[1m7";
    const std::string text = doctorText({hostile});
    const auto isControl = [](unsigned char each) {
        return (each < ' ' && each != '\n') || each == 0x7f;
    };
    EXPECT_TRUE(std::ranges::none_of(text, isControl)) << text;
    EXPECT_NE(text.find("Flea\\u001B[2J: held by a\\nb"), std::string::npos) << text;
}

TEST(DoctorReport, TheEndCountsWhatIsToBeDone)
{
    const std::string text = doctorText({check(Verdict::kFail), check(Verdict::kFail),
                                         check(Verdict::kWarn), check(Verdict::kUnknown)});
    EXPECT_NE(text.find("\n2 to mend, 1 to think about, 1 not found out.\n"), std::string::npos)
        << text;
}

TEST(DoctorReport, JsonHoldsEveryField)
{
    Check all = check(Verdict::kFail);
    all.command = "sudo ip link set dev eth1 mtu 9000";
    all.note = "A note.";
    const auto json = nlohmann::json::parse(doctorJson({all, check(Verdict::kSkip)}));
    EXPECT_EQ(json["exit_code"], 12);
    ASSERT_EQ(json["checks"].size(), 2U);
    EXPECT_EQ(json["checks"][0], (nlohmann::json{{"check", "mtu"},
                                                 {"subject", "eth1"},
                                                 {"verdict", "fail"},
                                                 {"found", "1500 bytes"},
                                                 {"needed", "9000 bytes"},
                                                 {"command", "sudo ip link set dev eth1 mtu 9000"},
                                                 {"note", "A note."}}));
    EXPECT_EQ(json["checks"][1]["verdict"], "skip");
}

TEST(DoctorReport, EveryVerdictHasAWord)
{
    const auto word = [](Verdict verdict) {
        return nlohmann::json::parse(doctorJson({check(verdict)}))["checks"][0]["verdict"]
            .get<std::string>();
    };
    EXPECT_EQ(word(Verdict::kOk), "ok");
    EXPECT_EQ(word(Verdict::kWarn), "warn");
    EXPECT_EQ(word(Verdict::kFail), "fail");
    EXPECT_EQ(word(Verdict::kSkip), "skip");
    EXPECT_EQ(word(Verdict::kUnknown), "unknown");
}

TEST(DoctorReport, ANameThatIsNoUtf8DoesNotSpoilTheJson)
{
    Check odd = check(Verdict::kOk);
    odd.subject = "\xff\xfe";
    EXPECT_TRUE(nlohmann::json::accept(doctorJson({odd})));
}

} // namespace
} // namespace kxhost
