// The settings of [[iobox]]: errors, hints and meanings.
#include "config/config_hints.h"
#include "config/config_iobox.h"
#include "config_fixture.h"
#include "kx_pg_line_rx.h"

#include <ostream>

namespace kxhost {
namespace {

constexpr const char* kStrobe = "[[iobox]]\npin = \"gpio0\"\nmode = \"output\"\nsource = "
                                "\"strobe\"\n";
constexpr const char* kOutput = "[[iobox]]\npin = \"gpio0\"\nmode = \"output\"\nsource = "
                                "\"data\"\nbits = 10\nword = 0x392\n";
constexpr const char* kInput = "[[iobox]]\npin = \"gpio1\"\nmode = \"input\"\nsource = \"data\"\n";

std::string with(std::string text, std::string_view part, std::string_view other)
{
    return text.replace(text.find(part), part.size(), other);
}

const std::string kOnPin2 = with(kOutput, "gpio0", "gpio2");

// ---- Errors.

TEST(ConfigIobox, APinIsRequired)
{
    EXPECT_EQ(onlyError("\n[[iobox]]\n"), "camera.toml:2: [[iobox]]: pin is missing");
    EXPECT_EQ(onlyError(kStrobe + std::string("[[iobox]]\nmode = \"output\"\n")),
              "camera.toml:5: [[iobox]]: pin is missing");
}

TEST(ConfigIobox, OnlyTheCamerasPinsAreKnown)
{
    for (const char* const pin : {"line1", "out4", "none", "gpio4", "Gpio0"}) {
        EXPECT_EQ(onlyError("[[iobox]]\npin = \"" + std::string(pin) + "\"\n"),
                  "camera.toml:2: iobox.pin = \"" + std::string(pin) +
                      "\": expected one of \"gpio0\", \"gpio1\", \"gpio2\", \"gpio3\"");
    }
}

TEST(ConfigIobox, ThereAreThreeAtMost)
{
    const std::string three = kStrobe + std::string(kOutput) + kInput;
    EXPECT_EQ(good(three).settings.iobox.size(), 3U);
    EXPECT_EQ(onlyError(three + "[[iobox]]\npin = \"gpio3\"\n"),
              "camera.toml:15: there may be 3 [[iobox]] settings, not 4");
}

TEST(ConfigIobox, ParametersBelongToAUse)
{
    const auto foreign = [](const std::string& entry, const std::string& parameter) {
        const std::string error = onlyError(entry + parameter + "\n");
        return error.substr(error.rfind(": ") + 2);
    };
    EXPECT_EQ(onlyError(kStrobe + std::string("bits = 3\n")),
              "camera.toml:5: iobox.bits = 3: is for data output only");
    EXPECT_EQ(foreign(kStrobe, "word = 3"), "is for data output only");
    EXPECT_EQ(foreign(kStrobe, "timeout_polls = 300"), "is for data input only");
    EXPECT_EQ(foreign(kOutput, "gap_polls = 30"), "is for data input only");
    EXPECT_EQ(foreign(kOutput, "delay = \"1 ms\""), "is for a strobe only");
    EXPECT_EQ(foreign(kInput, "duration = \"1 ms\""), "is for a strobe only");
    EXPECT_EQ(foreign(kInput, "bits = 3"), "is for data output only");
    EXPECT_EQ(foreign("[[iobox]]\npin = \"gpio1\"\n", "delay = \"1 ms\""), "is for a strobe only");
}

TEST(ConfigIobox, DataOutputNeedsBitsAndWord)
{
    EXPECT_EQ(onlyError(with(kOutput, "word = 0x392\n", "")),
              "camera.toml:4: iobox.source = \"data\": data output needs word");
    EXPECT_EQ(onlyError(with(kOutput, "bits = 10\n", "")),
              "camera.toml:4: iobox.source = \"data\": data output needs bits");
}

TEST(ConfigIobox, AWordFitsIntoItsBits)
{
    const auto output = [](const std::string& bits, const std::string& word) {
        return with(with(kOutput, "10", bits), "0x392", word);
    };
    good(output("10", "1023"));
    EXPECT_EQ(onlyError(output("10", "1024")),
              "camera.toml:6: iobox.word = 1024: does not fit into bits = 10");
    good(output("1", "1"));
    good(output("31", "0x7FFFFFFF"));
    EXPECT_EQ(onlyError(output("31", "0x80000000")),
              "camera.toml:6: iobox.word = 2147483648: does not fit into bits = 31");
    good(output("32", "0xFFFFFFFE"));
    EXPECT_EQ(onlyError(output("32", "0xFFFFFFFF")),
              "camera.toml:6: iobox.word = 0xFFFFFFFF: expected a whole number from 0 to "
              "4294967294");
    EXPECT_EQ(onlyError(output("33", "1")),
              "camera.toml:5: iobox.bits = 33: expected a whole number from 1 to 32");
}

TEST(ConfigIobox, OnlyAStrobeAndDataOutputBelowItShareAPin)
{
    good(kStrobe + std::string(kOutput));
    EXPECT_EQ(onlyError(kOutput + std::string(kStrobe)),
              "camera.toml:8: iobox.pin = \"gpio0\": is set at camera.toml:1 already; a strobe "
              "that shares its pin with data output stands above it");
    const std::string other = "only a strobe and, below it, data output can share a pin";
    const std::string inputThere = with(kInput, "gpio1", "gpio0");
    const std::string strobeOff = with(kStrobe, "output", "off");
    for (const auto& [first, second] : {std::pair<std::string, std::string>{kStrobe, kStrobe},
                                        {kOutput, kOutput},
                                        {kStrobe, inputThere},
                                        {inputThere, kStrobe},
                                        {kOutput, inputThere},
                                        {strobeOff, kOutput}}) {
        const std::string error = onlyError(first + second);
        EXPECT_TRUE(error.ends_with("is set at camera.toml:1 already; " + other)) << error;
    }
    EXPECT_TRUE(onlyError(kStrobe + std::string(kOutput) + kOutput)
                    .starts_with("camera.toml:12: iobox.pin = \"gpio0\": is set at camera.toml:5"));
}

/// A symbol that ended before its last pulse is counted would be read wrong.
TEST(ConfigIobox, AGapIsLongerThanWhatCountsAPulse)
{
    EXPECT_EQ(onlyError(kInput + std::string("gap_polls = 3\n")),
              "camera.toml:5: iobox.gap_polls = 3: expected a whole number from 4 to 1000000");
    good(kOutput + std::string(kInput) + "gap_polls = 4\n");
}

// ---- Hints.

struct HintCase {
    const char* title;
    std::string text;
    std::vector<std::string> hints;
};

void PrintTo(const HintCase& each, std::ostream* out)
{
    *out << each.title;
}

class IoboxHints : public testing::TestWithParam<HintCase> {};

TEST_P(IoboxHints, AreGivenWhereTheyAreDue)
{
    EXPECT_EQ(hintsOn(good(GetParam().text)), GetParam().hints);
}

std::string pin(const std::string& keys)
{
    return "[[iobox]]\npin = \"gpio3\"\n" + keys + "\n";
}

const std::string kBothData = kOutput + std::string(kInput);
const std::string kExposure = "[acquisition]\nexposure = \"4 ms\"\n";

INSTANTIATE_TEST_SUITE_P(
    Uses, IoboxHints,
    testing::Values(
        HintCase{"Good", kStrobe + std::string("delay = \"1 ms\"\n") + kBothData, {}},
        HintCase{"OffIsFine", pin("mode = \"off\""), {}},
        HintCase{"StrobeOffIsFine", pin("mode = \"off\"\nsource = \"strobe\""), {}},
        HintCase{"OutputOfNothing",
                 pin("mode = \"output\""),
                 {"camera.toml:3: iobox.mode = \"output\": only switches a strobe off: there is no "
                  "source"}},
        HintCase{"InputOfNothing",
                 pin("mode = \"input\"\nsource = \"none\""),
                 {"camera.toml:3: iobox.mode = \"input\": only switches a strobe off: there is no "
                  "source"}},
        HintCase{"StrobeWithoutMode",
                 pin("source = \"strobe\""),
                 {"camera.toml:3: iobox.source = \"strobe\": switches the strobe off: it takes "
                  "mode = \"output\""}},
        HintCase{"StrobeInput",
                 pin("mode = \"input\"\nsource = \"strobe\""),
                 {"camera.toml:3: iobox.mode = \"input\": switches the strobe off: it takes mode = "
                  "\"output\""}},
        HintCase{"DataWithoutMode",
                 pin("source = \"data\""),
                 {"camera.toml:3: iobox.source = \"data\": has no effect: data takes mode = "
                  "\"output\" or \"input\""}},
        HintCase{"TimesOfNoStrobe",
                 pin("mode = \"off\"\nsource = \"strobe\"\ndelay = \"1 ms\"\nduration = \"2 ms\""),
                 {"camera.toml:5: iobox.delay = \"1000 us\": has no effect: the strobe is off",
                  "camera.toml:6: iobox.duration = \"2000 us\": has no effect: the strobe is off"}},
        HintCase{"InvertedInput",
                 kBothData + "invert = \"yes\"\n",
                 {"camera.toml:11: iobox.invert = \"yes\": has no effect: the receiver learns the "
                  "level at which the line rests"}},
        HintCase{"InvertedNothing",
                 pin("invert = \"yes\""),
                 {"camera.toml:3: iobox.invert = \"yes\": has no effect: the pin puts nothing "
                  "out"}},
        HintCase{"InvertedOutputs",
                 kStrobe + std::string("invert = \"yes\"\n") + kOutput + "invert = \"yes\"\n",
                 {}}));

INSTANTIATE_TEST_SUITE_P(
    Data, IoboxHints,
    testing::Values(
        HintCase{"ReplyWithoutCommand",
                 kInput,
                 {"camera.toml:3: iobox.mode = \"input\": has no effect: replies follow commands, "
                  "and no [[iobox]] sends one"}},
        HintCase{
            "TwoInputs",
            kBothData + with(kInput, "gpio1", "gpio2"),
            {"camera.toml:9: iobox.mode = \"input\": has no effect: of several data inputs the "
             "one with the highest number takes the replies"}},
        HintCase{"TwoCommands",
                 kOutput + kOnPin2,
                 {"camera.toml:9: iobox.mode = \"output\": is a second command: only one at a time "
                  "is kept track of, so that the reply to the other one, or the strobe of a shared "
                  "pin, may be lost"}},
        HintCase{"ShortestReply", kBothData + "timeout_polls = 57\n", {}},
        HintCase{"NoReply",
                 kBothData + "timeout_polls = 56\n",
                 {"camera.toml:11: iobox.timeout_polls = 56: is too short for any reply: the "
                  "shortest takes 57 polls"}},
        HintCase{"ShortestReplyOfShortGaps", kBothData + "timeout_polls = 25\ngap_polls = 4\n", {}},
        HintCase{"NoReplyOfShortGaps",
                 kBothData + "timeout_polls = 24\ngap_polls = 4\n",
                 {"camera.toml:11: iobox.timeout_polls = 24: is too short for any reply: the "
                  "shortest takes 25 polls"}}));

INSTANTIATE_TEST_SUITE_P(
    Exposure, IoboxHints,
    testing::Values(
        HintCase{"AsLong", kExposure + kStrobe + "duration = \"4 ms\"\n", {}},
        HintCase{"Longer",
                 kExposure + kStrobe + "duration = \"4001 us\"\n",
                 {"camera.toml:7: iobox.duration = \"4001 us\": is longer than the exposure, to "
                  "which it is cut: 4 ms"}},
        HintCase{"NotConfigured", kStrobe + std::string("duration = \"1 s\"\n"), {}},
        HintCase{"NotManual",
                 "[acquisition]\nexposure_mode = \"auto\"\n" + std::string(kStrobe) +
                     "duration = \"1 s\"\n",
                 {}}));

/// The hint's shortest reply, heard by the receiver itself.
TEST(ConfigIobox, TheShortestReplyTakesThePollsThatTheHintSays)
{
    for (const auto& [gap, polls] : {std::pair{12U, 57U}, {4U, 25U}}) {
        KxPGrey::LineRx rx;
        rx.rxWaitInit = 1;
        rx.loopsLeft = 1000;
        unsigned taken = 0;
        KxPGrey::LineEvent event = KxPGrey::LineEvent::none;
        while (event != KxPGrey::LineEvent::frameEnd && taken < 1000) {
            const bool isFirstPulse = taken >= 3 && taken < 6;
            const bool isParity = taken >= 6 + gap && taken < 9 + gap;
            event = KxPGrey::stepLineRx(rx, isFirstPulse || isParity, gap).event;
            ++taken;
        }
        EXPECT_EQ(taken, polls);
        EXPECT_EQ(rx.bitCount, 4);
    }
}

// ---- Meanings.

/// What `check` prints of the last setting.
std::string described(const std::string& text)
{
    const std::string all = describeConfiguration(good(text));
    const std::size_t begin = all.rfind("[[iobox]]\n");
    return all.substr(begin, all.find("\n\n", begin) - begin);
}

TEST(ConfigIobox, AStrobeIsDescribed)
{
    EXPECT_EQ(described(kStrobe + std::string("invert = \"yes\"\nduration = \"1500 us\"\n")),
              "[[iobox]]\npin = \"gpio0\"\nmode = \"output\"\nsource = \"strobe\"\n"
              "invert = \"yes\"  # the pulse is low\n"
              "# delay: kept as the camera has it\n"
              "duration = \"1500 us\"  # 1.5 ms\n"
              "# bits: for data output only\n# word: for data output only\n"
              "# timeout_polls: for data input only\n# gap_polls: for data input only");
    EXPECT_NE(described(kStrobe + std::string("invert = \"no\"\ndelay = \"20 us\"\n"))
                  .find("invert = \"no\"  # the pulse is high\ndelay = \"20 us\"  # 20 us\n"),
              std::string::npos);
}

TEST(ConfigIobox, ACommandIsDescribed)
{
    const auto line = [](const std::string& bits, const std::string& word) {
        const std::string text = described(with(with(kOutput, "10", bits), "0x392", word));
        const std::size_t begin = text.find("bits = ");
        return text.substr(begin, text.find("\n# timeout") - begin);
    };
    EXPECT_EQ(line("10", "0x392"), "bits = 10  # 5 symbols and the parity\n"
                                   "word = 914  # 0x392, 330 ms on the line");
    EXPECT_EQ(line("3", "0b101"), "bits = 3  # 2 symbols and the parity, a 0 is sent behind the "
                                  "last bit\nword = 5  # 0x5, 184 ms on the line");
    EXPECT_EQ(line("2", "0"), "bits = 2  # 1 symbol and the parity\n"
                              "word = 0  # 0x0, 126 ms on the line");
    EXPECT_NE(line("32", "0xFFFFFFFE").find("# 0xFFFFFFFE, 948 ms on the line"), std::string::npos);
    EXPECT_NE(described(kOutput + std::string("invert = \"yes\"\n")).find("# the line rests high"),
              std::string::npos);
    EXPECT_NE(described(kOutput + std::string("invert = \"no\"\n")).find("# the line rests low"),
              std::string::npos);
}

TEST(ConfigIobox, AReplyIsDescribed)
{
    EXPECT_NE(described(kInput + std::string("timeout_polls = 500\ngap_polls = 20\n"))
                  .find("timeout_polls = 500  # at least 1 s\n"
                        "gap_polls = 20  # at least 40 ms of rest end a symbol, 120 ms the reply"),
              std::string::npos);
    EXPECT_NE(described(kInput).find("# timeout_polls: 10000\n# gap_polls: 12"), std::string::npos);
}

} // namespace
} // namespace kxhost
