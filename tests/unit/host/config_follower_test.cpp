// What becomes of a configuration file that changes while a grab runs.
#include "grab/config_follower.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <unistd.h>

namespace kxhost {
namespace {

using Said = std::vector<std::string>;

constexpr const char* kRefused = "The configuration is refused; the one in force stays.";

class ConfigFollowerTest : public testing::Test {
protected:
    void write(const std::string& text) const { kxtest::writeText(path_, text); }

    void begin(const std::string& text, const std::vector<std::string>& overrides = {})
    {
        write(text);
        Configuration start;
        ASSERT_EQ(loadConfiguration(path_, overrides, start), ConfigErrors{});
        follower_ = std::make_unique<ConfigFollower>(
            ConfigSource{path_, overrides}, start, offers_,
            [this](const std::string& sentence) { said_.push_back(sentence); });
    }

    void change(const std::string& text)
    {
        write(text);
        follower_->fileChanged();
    }

    void reload(const std::string& text)
    {
        write(text);
        follower_->reload();
    }

    std::string takesReload(const std::string& keys) const
    {
        return keys + " a reload (kxhost ctl " + std::to_string(getpid()) + " reload)";
    }

    kxtest::TemporaryFolder folder_;
    std::string path_ = folder_.file("camera.toml");
    ConfigOffers offers_;
    std::unique_ptr<ConfigFollower> follower_;
    Said said_;
};

TEST_F(ConfigFollowerTest, AChangeOfLiveKeysIsOfferedOnce)
{
    begin("[acquisition]\ngain = 3\n");
    change("[acquisition]\ngain = 6\ngamma = 1.5\n");
    const auto offer = offers_.live.take();
    ASSERT_NE(offer, nullptr);
    EXPECT_EQ(offer->settings.gainDb, 6.0F);
    EXPECT_EQ(offer->settings.gamma, 1.5F);
    EXPECT_EQ(offer->changed, "acquisition.gain and acquisition.gamma");
    EXPECT_EQ(offer->file, path_);
    follower_->fileChanged();
    EXPECT_EQ(offers_.live.take(), nullptr);
    EXPECT_EQ(offers_.reload.take(), nullptr);
    EXPECT_EQ(said_, Said{});
}

TEST_F(ConfigFollowerTest, ANewerChangeReplacesOneThatWaits)
{
    begin("[acquisition]\ngain = 3\n");
    change("[acquisition]\ngain = 6\n");
    change("[acquisition]\ngain = 9\n");
    EXPECT_EQ(offers_.live.take()->settings.gainDb, 9.0F);
    EXPECT_EQ(offers_.live.take(), nullptr);
}

TEST_F(ConfigFollowerTest, WithoutADifferenceNothingIsOffered)
{
    begin("[acquisition]\ngain = 3\n");
    change("# the same\n[acquisition]\ngain = \"3 dB\"\n");
    EXPECT_EQ(offers_.live.take(), nullptr);
    EXPECT_EQ(said_, Said{});
}

TEST_F(ConfigFollowerTest, AChangeOfOtherKeysIsHeldWithTheLiveOnes)
{
    begin("[acquisition]\ngain = 3\n");
    const std::string text = "[acquisition]\ngain = 6\nframe_rate = 20\n[region]\nwidth = 640\n";
    change(text);
    EXPECT_EQ(offers_.live.take(), nullptr);
    EXPECT_EQ(said_, Said{path_ + " has changed: " +
                          takesReload("region.width and acquisition.frame_rate take") +
                          "; nothing of the change is in force."});
    follower_->fileChanged();
    EXPECT_EQ(said_.size(), 1U) << "told once";
    change("[acquisition]\ngain = 6\n");
    ASSERT_NE(offers_.live.take(), nullptr) << "the other keys are as they were again";
    change(text);
    EXPECT_EQ(said_.size(), 2U);
}

TEST_F(ConfigFollowerTest, SaysWhatTakesANewStart)
{
    begin("");
    change("[output]\nprefix = \"a\"\n[acquisition]\ngain = 1\n");
    change("[output]\nprefix = \"a\"\nwriters = 3\n[acquisition]\nframe_rate = 20\n");
    EXPECT_EQ(said_, (Said{path_ + " has changed: output.prefix takes a new start of kxhost; "
                                   "nothing of the change is in force.",
                           path_ + " has changed: " + takesReload("acquisition.frame_rate takes") +
                               ", output.prefix and output.writers take a new start of kxhost; "
                               "nothing of the change is in force."}));
    EXPECT_EQ(offers_.live.take(), nullptr);
}

TEST_F(ConfigFollowerTest, AFileWithAnErrorIsToldOnceAndChangesNothing)
{
    begin("[acquisition]\ngain = 3\n");
    change("[acquisition]\ngain = 6\nbogus = 1\n");
    const Said once = {path_ + ":3: unknown key acquisition.bogus", kRefused};
    EXPECT_EQ(said_, once);
    follower_->fileChanged();
    EXPECT_EQ(said_, once);
    EXPECT_EQ(offers_.live.take(), nullptr);
    change("[acquisition]\ngain = 6\n");
    EXPECT_EQ(offers_.live.take()->settings.gainDb, 6.0F);
    change("[acquisition]\ngain = 6\nbogus = 1\n");
    EXPECT_EQ(said_.size(), 4U) << "a new mistake, although it reads the same";
}

TEST_F(ConfigFollowerTest, AReloadOffersWhateverHasChanged)
{
    begin("[acquisition]\ngain = 3\n");
    reload("[acquisition]\ngain = 6\nframe_rate = 20\n[region]\nwidth = 640\n");
    const auto offer = offers_.reload.take();
    ASSERT_NE(offer, nullptr);
    EXPECT_EQ(offer->settings.width, 640U);
    EXPECT_EQ(offer->changed, "region.width, acquisition.frame_rate and acquisition.gain");
    follower_->reload();
    ASSERT_NE(offers_.reload.take(), nullptr) << "also when nothing has changed";
    EXPECT_EQ(said_, Said{});
}

TEST_F(ConfigFollowerTest, AReloadReplacesALiveChangeThatWaits)
{
    begin("[acquisition]\ngain = 3\n");
    change("[acquisition]\ngain = 6\n");
    reload("[acquisition]\ngain = 9\n");
    EXPECT_EQ(offers_.live.take(), nullptr);
    EXPECT_EQ(offers_.reload.take()->settings.gainDb, 9.0F);
}

TEST_F(ConfigFollowerTest, AReloadOfAFileWithAnErrorLeavesWhatWasOffered)
{
    begin("[acquisition]\ngain = 3\n");
    reload("[acquisition]\ngain = 6\n");
    reload("[acquisition]\ngain = \n");
    ASSERT_EQ(said_.size(), 2U);
    EXPECT_TRUE(said_[0].starts_with(path_ + ":2: ")) << said_[0];
    EXPECT_EQ(said_[1], kRefused);
    follower_->reload();
    EXPECT_EQ(said_.size(), 4U) << "who asks gets an answer";
    EXPECT_EQ(offers_.reload.take()->settings.gainDb, 6.0F);
}

TEST_F(ConfigFollowerTest, AMissingFileIsAnErrorToo)
{
    begin("");
    std::filesystem::remove(path_);
    follower_->reload();
    EXPECT_EQ(said_, (Said{path_ + ": the configuration file cannot be read", kRefused}));
    EXPECT_EQ(offers_.reload.take(), nullptr);
}

TEST_F(ConfigFollowerTest, AReloadKeepsWhatCannotChange)
{
    begin("[output]\nprefix = \"a\"\n[grab]\nframes = 5\n");
    reload("[output]\nprefix = \"b\"\n[acquisition]\ngain = 6\n");
    const auto offer = offers_.reload.take();
    EXPECT_EQ(offer->settings.outputPrefix, "a");
    EXPECT_EQ(offer->settings.frames, 5U);
    EXPECT_EQ(offer->settings.gainDb, 6.0F);
    EXPECT_EQ(offer->changed, "acquisition.gain");
    EXPECT_EQ(said_, Said{"grab.frames and output.prefix cannot change in a running grab and keep "
                          "their values until the next start."});
    said_.clear();
    change("[output]\nprefix = \"b\"\n[acquisition]\ngain = 9\n");
    const auto live = offers_.live.take();
    ASSERT_NE(live, nullptr) << "what was told already does not hold back later changes";
    EXPECT_EQ(live->settings.outputPrefix, "a");
    reload("[output]\nprefix = \"b\"\n[grab]\nframes = 5\n");
    EXPECT_EQ(said_, Said{"output.prefix cannot change in a running grab and keeps its value until "
                          "the next start."});
}

TEST_F(ConfigFollowerTest, OverridesWinLaterOnToo)
{
    begin("[acquisition]\ngain = 3\n", {"acquisition.gain=5"});
    change("[acquisition]\ngain = 6\n");
    EXPECT_EQ(offers_.live.take(), nullptr);
    reload("[acquisition]\ngain = 6\ngamma = 2\n");
    EXPECT_EQ(offers_.reload.take()->settings.gainDb, 5.0F);
}

TEST_F(ConfigFollowerTest, WithoutAFileAReloadAppliesTheOverrides)
{
    Configuration start;
    ASSERT_EQ(loadConfiguration("", {"acquisition.gain=5"}, start), ConfigErrors{});
    ConfigFollower follower({"", {"acquisition.gain=5"}}, start, offers_,
                            [this](const std::string& text) { said_.push_back(text); });
    EXPECT_TRUE(follower.files().empty());
    follower.reload();
    EXPECT_EQ(offers_.reload.take()->settings.gainDb, 5.0F);
    EXPECT_EQ(said_, Said{});
}

TEST_F(ConfigFollowerTest, TheFileOfATableIsFollowedAsWell)
{
    const std::string table = folder_.file("table.txt");
    const auto tableOf = [&](const std::string& value) {
        std::string text;
        for (int entry = 0; entry < 512; ++entry) {
            text += value + "\n";
        }
        kxtest::writeText(table, text);
    };
    tableOf("1");
    begin("[lut]\nfile = \"table.txt\"\n");
    EXPECT_EQ(follower_->files(), (std::vector<std::string>{path_, table}));
    tableOf("2");
    follower_->fileChanged();
    const auto offer = offers_.live.take();
    ASSERT_NE(offer, nullptr);
    EXPECT_EQ(offer->settings.lut[0], 2U);
    EXPECT_EQ(offer->changed, "lut.file");
}

} // namespace
} // namespace kxhost
