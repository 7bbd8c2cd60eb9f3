// Reading of system files: what is there, what is not, and what cannot be read.
#include "doctor_fixture.h"

#include <gtest/gtest.h>

namespace kxhost {
namespace {

using State = FileNumber::State;

TEST(DoctorTree, WithoutARootItIsTheRunningSystem)
{
    EXPECT_EQ(Tree().at("/proc/self/status"), "/proc/self/status");
    EXPECT_EQ(Tree("/image").at("/etc/group"), "/image/etc/group");
    EXPECT_TRUE(Tree().has("/proc/self/status"));
    EXPECT_EQ(Tree().line("/proc/self/status").substr(0, 5), "Name:");
}

TEST(DoctorTree, NumbersAreThereAbsentOrGarbled)
{
    const kxtest::FakeTree fake;
    const Tree tree = fake.tree();
    const auto state = [&](const std::string& text) {
        fake.file("/n", text);
        return tree.number("/n").state;
    };
    EXPECT_EQ(tree.number("/n").state, State::kAbsent);
    EXPECT_EQ(state("1000\n"), State::kThere);
    EXPECT_EQ(tree.number("/n").value, 1000U);
    EXPECT_EQ(state(" 5 "), State::kThere);
    for (const char* garbled :
         {"", "\n", "x", "12 34", "-1", "1.5", "0x10", "99999999999999999999"}) {
        EXPECT_EQ(state(garbled), State::kGarbled) << garbled;
    }
    fake.folder("/folder");
    EXPECT_EQ(tree.number("/folder").state, State::kGarbled);
}

TEST(DoctorTree, NamesComeSortedAndOnlyFromFolders)
{
    const kxtest::FakeTree fake;
    fake.file("/d/b", "");
    fake.file("/d/a", "");
    EXPECT_EQ(fake.tree().names("/d"), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(fake.tree().names("/d/a"), std::nullopt);
    EXPECT_EQ(fake.tree().names("/none"), std::nullopt);
}

TEST(DoctorTree, TextsLinesAndLinks)
{
    const kxtest::FakeTree fake;
    fake.file("/t", "one\ntwo\n");
    fake.link("/l", "/nowhere/at/all");
    EXPECT_EQ(fake.tree().text("/t"), "one\ntwo\n");
    EXPECT_EQ(fake.tree().text("/none"), std::nullopt);
    EXPECT_EQ(fake.tree().line("/t"), "one");
    EXPECT_EQ(fake.tree().line("/none"), "");
    EXPECT_EQ(fake.tree().link("/l"), "/nowhere/at/all");
    EXPECT_EQ(fake.tree().link("/t"), "");
    EXPECT_EQ(linesOf("a\n\nb"), (std::vector<std::string>{"a", "", "b"}));
}

} // namespace
} // namespace kxhost
