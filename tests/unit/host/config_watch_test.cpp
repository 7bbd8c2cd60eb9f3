// Noticing that a file is another one, with real files; the clock is moved by hand.
#include "grab/config_watch.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <poll.h>

namespace kxhost {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using Places = std::vector<std::pair<std::string, std::string>>;

class ConfigWatchTest : public testing::Test {
protected:
    ConfigWatchTest()
    {
        kxtest::writeText(path_, "old");
        watch_.follow({path_});
    }

    /// Whether what has happened since the last call was a change.
    bool changed()
    {
        pollfd happened{watch_.descriptor(), POLLIN, 0};
        if (poll(&happened, 1, 0) == 1) {
            watch_.read(now_);
        }
        now_ += 10s;
        return watch_.isDue(now_);
    }

    kxtest::TemporaryFolder folder_;
    std::string path_ = folder_.file("camera.toml");
    ConfigWatch watch_;
    ConfigWatch::Clock::time_point now_;
};

TEST_F(ConfigWatchTest, NoticesThatAFileIsWritten)
{
    EXPECT_FALSE(changed());
    kxtest::writeText(path_, "new");
    EXPECT_TRUE(changed());
    EXPECT_FALSE(changed());
}

TEST_F(ConfigWatchTest, NoticesThatAnEditorReplacesTheFile)
{
    for (int time = 0; time < 2; ++time) {
        kxtest::writeText(folder_.file("camera.toml.new"), "new");
        EXPECT_FALSE(changed()) << "another file";
        fs::rename(folder_.file("camera.toml.new"), path_);
        EXPECT_TRUE(changed());
    }
}

TEST_F(ConfigWatchTest, AnEmptyNewFileIsNotWrittenYet)
{
    fs::remove(path_);
    EXPECT_FALSE(changed());
    std::ofstream file(path_);
    file << "half" << std::flush;
    EXPECT_FALSE(changed());
    file.close();
    EXPECT_TRUE(changed());
}

TEST_F(ConfigWatchTest, ReadingIsNoChange)
{
    EXPECT_EQ(kxtest::readText(path_), "old");
    EXPECT_FALSE(changed());
}

TEST_F(ConfigWatchTest, FollowsSymbolicLinks)
{
    fs::create_directory(folder_.file("a"));
    fs::create_directory(folder_.file("b"));
    kxtest::writeText(folder_.file("a/real.toml"), "a");
    kxtest::writeText(folder_.file("b/real.toml"), "b");
    fs::create_symlink("a", folder_.file("current"));
    fs::create_symlink("current/real.toml", folder_.file("link.toml"));
    const std::vector<std::string> files = {folder_.file("link.toml")};
    watch_.follow(files);
    kxtest::writeText(folder_.file("a/real.toml"), "new");
    EXPECT_TRUE(changed()) << "the file at the end";
    fs::create_symlink("b", folder_.file("next"));
    EXPECT_FALSE(changed());
    fs::rename(folder_.file("next"), folder_.file("current"));
    EXPECT_TRUE(changed()) << "a link on the way";
    EXPECT_TRUE(watch_.follow(files)) << "another folder";
    kxtest::writeText(folder_.file("a/real.toml"), "new");
    EXPECT_FALSE(changed());
    kxtest::writeText(folder_.file("b/real.toml"), "new");
    EXPECT_TRUE(changed());
    fs::remove(folder_.file("link.toml"));
    fs::create_symlink("b/real.toml", folder_.file("link.toml"));
    EXPECT_TRUE(changed()) << "the first link, made anew";
}

TEST_F(ConfigWatchTest, FollowsWhatItIsToldAndNothingElse)
{
    kxtest::writeText(folder_.file("table.txt"), "1");
    EXPECT_FALSE(changed());
    EXPECT_TRUE(watch_.follow({path_, folder_.file("table.txt")}));
    EXPECT_FALSE(watch_.follow({path_, folder_.file("table.txt")}));
    kxtest::writeText(folder_.file("table.txt"), "2");
    EXPECT_TRUE(changed());
    watch_.follow({});
    kxtest::writeText(path_, "new");
    EXPECT_FALSE(changed());
}

TEST_F(ConfigWatchTest, SaysWhichFolderCannotBeWatched)
{
    EXPECT_EQ(watch_.trouble(), "");
    watch_.follow({folder_.file("none/camera.toml")});
    EXPECT_EQ(watch_.trouble(),
              "Cannot watch " + folder_.file("none") + " for changes: No such file or directory.");
    watch_.follow({path_});
    EXPECT_EQ(watch_.trouble(), "");
}

TEST_F(ConfigWatchTest, AVanishedFolderIsAChange)
{
    fs::create_directory(folder_.file("gone"));
    kxtest::writeText(folder_.file("gone/camera.toml"), "x");
    watch_.follow({folder_.file("gone/camera.toml")});
    fs::remove_all(folder_.file("gone"));
    EXPECT_TRUE(changed());
}

TEST_F(ConfigWatchTest, WaitsForSilenceButNotForEver)
{
    EXPECT_EQ(watch_.waitMs(now_), -1);
    kxtest::writeText(path_, "1");
    watch_.read(now_);
    EXPECT_EQ(watch_.waitMs(now_), 100);
    EXPECT_FALSE(watch_.isDue(now_ + 99ms));
    kxtest::writeText(path_, "2");
    watch_.read(now_ + 60ms);
    EXPECT_FALSE(watch_.isDue(now_ + 159ms));
    EXPECT_EQ(watch_.waitMs(now_ + 159ms), 1);
    for (int step = 0; step < 19; ++step) {
        kxtest::writeText(path_, "3");
        watch_.read(now_ + 60ms + step * 50ms);
    }
    EXPECT_FALSE(watch_.isDue(now_ + 999ms));
    EXPECT_TRUE(watch_.isDue(now_ + 1000ms)) << "after a second at the latest";
    EXPECT_FALSE(watch_.isDue(now_ + 1h));
    EXPECT_EQ(watch_.waitMs(now_ + 1h), -1);
}

TEST_F(ConfigWatchTest, KnowsEveryPlaceOnTheWay)
{
    const std::string root = fs::canonical(folder_.file(".")).string();
    EXPECT_EQ(placesOf(root + "/none/../camera.toml"), (Places{{root, "camera.toml"}}));
    fs::create_symlink(root, root + "/self");
    EXPECT_EQ(placesOf(root + "/self/camera.toml"),
              (Places{{root, "self"}, {root, "camera.toml"}}));
    fs::create_symlink("loop", root + "/loop");
    EXPECT_EQ(placesOf(root + "/loop").size(), 41U) << "given up some day";
}

} // namespace
} // namespace kxhost
