// When a changed key takes effect: the table and the documentation say the same.
#include "config/config_keys.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>

namespace kxhost {
namespace {

constexpr std::string_view kOnlyAtStart =
    "camera.model camera.serial camera.bus_mask camera.wait camera.reconnect camera.silence "
    "grab.frames grab.max_losses grab.watch "
    "log.sinks "
    "log.id output.folder output.prefix output.format output.bayer output.compression "
    "output.metadata output.overwrite output.queue output.when_full output.writers ";
constexpr std::string_view kByRestart =
    "gige.packet_size grab.buffers region.width region.height region.offset_x region.offset_y "
    "format.pixel_format format.convert_to iobox.timeout_polls iobox.gap_polls ";
constexpr std::string_view kByReload =
    "format.rotation acquisition.frame_rate auto.brightness auto.gain_min auto.gain_max "
    "auto.exposure_min auto.exposure_max timestamps.clock_correction ";
constexpr std::string_view kAtOnce =
    "acquisition.exposure acquisition.exposure_mode acquisition.gain acquisition.gain_mode "
    "acquisition.gamma color.saturation color.white_balance_red color.white_balance_blue "
    "auto.auto_exposure lut.table lut.file lut.curve lut.bits lut.mode lut.clip_limit iobox.pin "
    "iobox.mode "
    "iobox.source iobox.invert iobox.delay iobox.duration iobox.bits iobox.word "
    "log.level ";

TEST(ConfigTakes, EveryKeyTakesEffectWhenItIsExpectedTo)
{
    std::map<Takes, std::string> found;
    for (const Key& key : configKeys()) {
        found[key.takes] += std::string(key.section) + "." + std::string(key.name) + " ";
    }
    EXPECT_EQ(found[Takes::kStart], kOnlyAtStart);
    EXPECT_EQ(found[Takes::kRestart], kByRestart);
    EXPECT_EQ(found[Takes::kReload], kByReload);
    EXPECT_EQ(found[Takes::kLive], kAtOnce);
}

std::string word(Takes takes)
{
    switch (takes) {
    case Takes::kLive:
        return "live";
    case Takes::kReload:
        return "reload";
    case Takes::kRestart:
        return "restart";
    case Takes::kStart:
        break;
    }
    return "start";
}

/// The fourth column of each key's row in the documentation, by section and name.
std::map<std::string, std::string> documented()
{
    std::map<std::string, std::string> words;
    std::ifstream file(KX_CONFIGURATION_DOC);
    std::string section;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("## ")) {
            const std::size_t from = line.find_first_not_of("# `[");
            section = line.substr(from, line.find_first_of("]`", from) - from);
        } else if (line.starts_with("| `")) {
            std::string key = section + ".";
            key += line.substr(3, line.find('`', 3) - 3);
            std::size_t column = 0;
            for (int skipped = 0; skipped < 3; ++skipped) {
                column = line.find(" | ", column + 1);
            }
            const std::size_t from = column == std::string::npos ? line.size() : column + 3;
            words[key] = line.substr(from, line.find(' ', from) - from);
        }
    }
    return words;
}

TEST(ConfigTakes, TheDocumentationSaysWhen)
{
    const auto words = documented();
    for (const Key& key : configKeys()) {
        const std::string name = std::string(key.section) + "." + std::string(key.name);
        const auto found = words.find(name);
        ASSERT_NE(found, words.end()) << name;
        EXPECT_EQ(found->second, word(key.takes)) << name;
    }
}

} // namespace
} // namespace kxhost
