// Verdicts on real-time priority and locked memory.
#include "doctor/doctor_limits.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

constexpr std::uint64_t kCapLock = std::uint64_t{1} << 14;
constexpr std::uint64_t kCapNice = std::uint64_t{1} << 23;

ProcessFacts grabber()
{
    ProcessFacts facts;
    facts.told = true;
    facts.user = 1000;
    facts.userName = "grabber";
    return facts;
}

Check priority(std::uint64_t soft, std::uint64_t hard, Weight lines = Weight::kSure)
{
    ProcessFacts facts = grabber();
    facts.realTimePriority = {soft, hard};
    DoctorNeeds needs;
    needs.lines = lines;
    return judgeRealTimePriority(facts, needs);
}

Check lock(std::uint64_t soft, std::uint64_t hard, std::uint64_t needed)
{
    ProcessFacts facts = grabber();
    facts.lockedMemory = {soft, hard};
    DoctorNeeds needs;
    needs.lockBytes = needed;
    return judgeLockedMemory(facts, needs);
}

TEST(DoctorLimits, PriorityOfTheLinesIsEnough)
{
    EXPECT_EQ(priority(98, 98).verdict, Verdict::kOk);
    EXPECT_EQ(priority(kUnlimited, kUnlimited).verdict, Verdict::kOk);
    EXPECT_EQ(priority(kUnlimited, kUnlimited).found, "unlimited");
    const Check less = priority(97, 97);
    EXPECT_EQ(less.verdict, Verdict::kFail);
    EXPECT_EQ(less.found, "97");
    EXPECT_EQ(less.needed, "98");
    EXPECT_EQ(less.command, "echo \"grabber - rtprio 98\" | sudo tee "
                            "/etc/security/limits.d/60-camera-rtprio.conf");
    EXPECT_EQ(less.note, "The lines of the I/O box are not driven without. Takes effect with the "
                         "next login.");
}

TEST(DoctorLimits, WithoutLinesLittlePriorityIsAWarning)
{
    EXPECT_EQ(priority(0, 0, Weight::kMaybe).verdict, Verdict::kWarn);
}

TEST(DoctorLimits, APriorityThatMayBeRaisedIsRaisedInTheShell)
{
    EXPECT_EQ(priority(0, 98).command, "ulimit -S -r 98");
    EXPECT_EQ(priority(0, 97).command.substr(0, 4), "echo");
}

TEST(DoctorLimits, LockedMemoryMayBeExactlyAsNeeded)
{
    EXPECT_EQ(lock(8192, 8192, 8192).verdict, Verdict::kOk);
    EXPECT_EQ(lock(kUnlimited, kUnlimited, 8192).found, "unlimited");
    const Check less = lock(8191, 8191, 8192);
    EXPECT_EQ(less.verdict, Verdict::kWarn) << "kxhost locks none";
    EXPECT_EQ(less.found, "7 KB");
    EXPECT_EQ(less.needed, "8 KB");
    EXPECT_EQ(less.command, "echo \"grabber - memlock unlimited\" | sudo tee "
                            "/etc/security/limits.d/60-camera-memlock.conf");
    EXPECT_NE(less.note.find("next login"), std::string::npos);
    EXPECT_EQ(lock(0, 8193, 8193).needed, "9 KB") << "whole kilobytes are enough";
    EXPECT_EQ(lock(0, 8193, 8193).command, "ulimit -S -l 9");
}

TEST(DoctorLimits, CapabilitiesStandAboveLimits)
{
    ProcessFacts facts = grabber();
    facts.capabilities = kCapNice | kCapLock;
    EXPECT_EQ(judgeRealTimePriority(facts, {}).verdict, Verdict::kOk);
    EXPECT_EQ(judgeRealTimePriority(facts, {}).found, "any (CAP_SYS_NICE)");
    EXPECT_EQ(judgeLockedMemory(facts, {}).verdict, Verdict::kOk);
    facts.capabilities = ~(kCapNice | kCapLock);
    EXPECT_EQ(judgeRealTimePriority(facts, {}).verdict, Verdict::kUnknown);
    EXPECT_EQ(judgeLockedMemory(facts, {}).verdict, Verdict::kUnknown);
    EXPECT_EQ(judgeLockedMemory(facts, {}).found, "no limit to be read");
}

TEST(DoctorLimits, RootNeedsNoNewLogin)
{
    ProcessFacts facts = grabber();
    facts.user = 0;
    facts.realTimePriority = {0, 0};
    EXPECT_EQ(judgeRealTimePriority(facts, {}).note.find("login"), std::string::npos);
}

} // namespace
} // namespace kxhost
