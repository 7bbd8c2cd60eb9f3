// Who this process is and what its limits are.
#include "doctor/doctor_process.h"
#include "doctor_fixture.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

using kxtest::FakeTree;

constexpr const char* kStatus = "Name:\tkxhost\n"
                                "Uid:\t1000\t1001\t1000\t1000\n"
                                "Gid:\t100\t101\t100\t100\n"
                                "Groups:\t4 24 46 \n"
                                "CapEff:\t0000000000804000\n";
constexpr const char* kLimits =
    "Limit                     Soft Limit           Hard Limit           Units     \n"
    "Max locked memory         8388608              unlimited            bytes     \n"
    "Max realtime priority     40                   98                   \n";

TEST(DoctorProcess, IsReadFromItsStatus)
{
    const FakeTree fake;
    fake.file("/proc/self/status", kStatus);
    fake.file("/proc/self/limits", kLimits);
    fake.file("/etc/passwd", "root:x:0:0::/root:/bin/sh\nbroken\ngrabber:x:1001:101::/:/bin/sh\n");
    const ProcessFacts facts = readProcess(fake.tree());
    EXPECT_TRUE(facts.told);
    EXPECT_EQ(facts.user, 1001U) << "the effective one";
    EXPECT_EQ(facts.userName, "grabber");
    EXPECT_EQ(facts.groups, (std::vector<std::uint64_t>{101, 4, 24, 46}));
    EXPECT_FALSE(facts.isRoot());
    EXPECT_TRUE(facts.may(14));
    EXPECT_TRUE(facts.may(23));
    EXPECT_FALSE(facts.may(22));
    ASSERT_TRUE(facts.realTimePriority);
    EXPECT_EQ(facts.realTimePriority->soft, 40U);
    EXPECT_EQ(facts.realTimePriority->hard, 98U);
    ASSERT_TRUE(facts.lockedMemory);
    EXPECT_EQ(facts.lockedMemory->soft, 8388608U);
    EXPECT_EQ(facts.lockedMemory->hard, kUnlimited);
    EXPECT_EQ(userForShell(facts), "grabber");
}

TEST(DoctorProcess, WhatCannotBeReadIsNotTold)
{
    const FakeTree fake;
    const ProcessFacts facts = readProcess(fake.tree());
    EXPECT_FALSE(facts.told);
    EXPECT_FALSE(facts.realTimePriority);
    EXPECT_FALSE(facts.lockedMemory);
    fake.file("/proc/self/status", "Uid:\tsome\tbody\nGid:\t1\t1\nCapEff:\t0\n");
    fake.file("/proc/self/limits", "Max locked memory\nMax realtime priority     much more\n");
    const ProcessFacts garbled = readProcess(fake.tree());
    EXPECT_FALSE(garbled.told);
    EXPECT_FALSE(garbled.realTimePriority);
    EXPECT_FALSE(garbled.lockedMemory);
}

TEST(DoctorProcess, AUserWithoutNameIsLeftToTheShell)
{
    const FakeTree fake;
    fake.file("/proc/self/status", kStatus);
    const ProcessFacts facts = readProcess(fake.tree());
    EXPECT_TRUE(facts.told);
    EXPECT_EQ(facts.userName, "");
    EXPECT_EQ(userForShell(facts), "$(id -un)");
}

TEST(DoctorProcess, TheRunningOneCanBeRead)
{
    const ProcessFacts facts = readProcess(Tree());
    EXPECT_TRUE(facts.told);
    EXPECT_TRUE(facts.realTimePriority);
    EXPECT_TRUE(facts.lockedMemory);
}

} // namespace
} // namespace kxhost
