// Selection: which camera a run chooses by model, serial number and mask, and how it lets go of the
// others.
#include "plugin_test.h"

using kxtest::CameraText;
using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::warning;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class SelectionTest : public kxtest::PluginTest {
protected:
    static void plugInTwo(const char* first = "AB100", const char* second = "AB200")
    {
        CameraText one;
        one.serial = 16;
        one.model = first;
        CameraText two;
        two.serial = 17;
        two.model = second;
        plugIn({one, two});
    }
    /// Serial number of the camera that is chosen, 0 = none.
    static unsigned choose()
    {
        // The run ends at the power-up of the chosen camera, which is the last one connected.
        failCalls("WriteRegister");
        const int result = run();
        fcsim::clearFaults();
        if (result == 3) {
            return 0;
        }
        EXPECT_EQ(result, -5);
        return journal().count("Camera.Connect") == 1 ? 16 : 17;
    }
};

struct Choice {
    const char* name;
    const char* model; ///< null = not configured
    const char* id;
    std::uint32_t mask;
    unsigned chosen;
};

class SelectionChoiceTest : public SelectionTest, public testing::WithParamInterface<Choice> {};

TEST_P(SelectionChoiceTest, TakesTheFirstThatFits)
{
    plugInTwo();
    const auto text = [](const char* value) {
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    };
    host().config.model = text(GetParam().model);
    host().config.id = text(GetParam().id);
    host().config.activeCamMask = GetParam().mask;
    EXPECT_EQ(choose(), GetParam().chosen);
    // Every camera that was connected is released.
    EXPECT_EQ(journal().count("Camera.Connect"), journal().count("Camera.Disconnect"));
}

INSTANTIATE_TEST_SUITE_P(
    Selection, SelectionChoiceTest,
    testing::Values(
        Choice{"PrefixTakesTheFirst", "AB", nullptr, 0, 16},
        Choice{"PrefixAndEmptyId", "AB", "", 0, 16},
        Choice{"MatchComesBeforeTheMask", "AB", nullptr, 2, 16},
        Choice{"EmptyModelMatchesAll", "", nullptr, 0, 16},
        Choice{"WholeModel", "AB200", nullptr, 0, 17},
        Choice{"LongerThanTheModel", "AB2000", nullptr, 0, 0},
        Choice{"OtherCase", "ab", nullptr, 0, 0}, Choice{"MiddleOfTheModel", "B2", nullptr, 0, 0},
        Choice{"NoModel", nullptr, nullptr, 0, 0}, Choice{"NoModelButId", nullptr, "16", 0, 0},
        Choice{"NoModelButMask", nullptr, nullptr, 2, 17},
        Choice{"MaskOfBoth", nullptr, nullptr, 3, 16},
        Choice{"MaskBeyondTheBus", nullptr, nullptr, 4, 0},
        Choice{"MaskOverridesModel", "CD", nullptr, 2, 17},
        Choice{"MaskOverridesId", "AB", "99", 1, 16}, Choice{"DecimalId", "AB", "17", 0, 17},
        Choice{"HexadecimalId", "AB", "0x10", 0, 16}, Choice{"OctalId", "AB", "021", 0, 17},
        Choice{"OtherId", "AB", "18", 0, 0}, Choice{"IdButOtherModel", "CD", "16", 0, 0},
        Choice{"BrokenId", "AB", "12abc", 0, 0}, Choice{"BrokenIdAndMask", "AB", "17abc", 2, 17}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(SelectionTest, ReportsEachCheck)
{
    plugInTwo();
    host().config.model = "AB2";
    host().config.id = "0x11";
    EXPECT_EQ(choose(), 17U);
    const auto checks = journal().logsWith("heck configured");
    ASSERT_EQ(checks.size(), 3U);
    EXPECT_THAT(checks[0],
                testing::MatchesRegex("6 \\[i\\] Loop 0\\. Check configured Model "
                                      "\"AB2\" with \"AB100\" \\(result -?[1-9][0-9]*\\)"));
    EXPECT_EQ(checks[1], info("Loop 1. Check configured Model \"AB2\" with \"AB200\" (result 0)"));
    EXPECT_EQ(checks[2], info("Check configured Serial \"0x11\" with \"17\""));
}

TEST_F(SelectionTest, SaysNothingOfAModelThatIsNotConfigured)
{
    plugInTwo();
    host().config.model.reset();
    host().config.id = "16";
    host().config.activeCamMask = 2;
    EXPECT_EQ(choose(), 17U);
    EXPECT_THAT(journal().logsWith("heck configured"), IsEmpty());
    EXPECT_THAT(journal().logsWith("Choose"),
                ElementsAre(info("Loop 1. Choose Model \"AB200\" Serial \"17\" using command line "
                                 "option")));
}

TEST_F(SelectionTest, WarnsOfAnIdThatIsNoNumber)
{
    plugInTwo();
    host().config.model = "AB1";
    host().config.id = "12abc";
    EXPECT_EQ(choose(), 0U);
    EXPECT_THAT(journal().logsWith("pIdStr"),
                ElementsAre(warning("KxLibProc", "pIdStr conversion error - errno: 'Success', "
                                                 "errChars: 'abc'")));
    EXPECT_THAT(journal().logsWith("Check configured Serial"), IsEmpty());
}

TEST_F(SelectionTest, WarnsOfAnIdThatIsTooLarge)
{
    plugInTwo();
    host().config.model = "AB1";
    host().config.id = "99999999999999999999999";
    EXPECT_EQ(choose(), 0U);
    EXPECT_THAT(journal().logsWith("pIdStr"),
                ElementsAre(warning("KxLibProc", "pIdStr conversion error - errno: 'Numerical "
                                                 "result out of range', errChars: ''")));
}

TEST_F(SelectionTest, ReleasesWhatItPassesOver)
{
    plugInTwo();
    host().config.model.reset();
    host().config.activeCamMask = 0b10;
    EXPECT_EQ(choose(), 17U);
    EXPECT_THAT(journal().lines({"Camera.Connect", "Camera.GetCameraInfo", "Camera.Disconnect",
                                 "Camera.WriteRegister"}),
                ElementsAre(HasSubstr("Connect"), HasSubstr("GetCameraInfo"),
                            HasSubstr("Disconnect"), HasSubstr("Connect"),
                            HasSubstr("GetCameraInfo"), HasSubstr("WriteRegister"),
                            HasSubstr("Disconnect")));
}

TEST_F(SelectionTest, NeverConnectsWhatComesBehindTheChosen)
{
    plugInTwo();
    EXPECT_EQ(choose(), 16U);
    EXPECT_EQ(journal().count("Camera.Connect"), 1U);
}

struct Refusal {
    const char* operation;
    unsigned skip; ///< calls of the same name that pass first
    const char* message;
    unsigned disconnects; ///< with that of the camera that is chosen in the end
};

class SelectionRefusalTest : public SelectionTest, public testing::WithParamInterface<Refusal> {};

TEST_P(SelectionRefusalTest, GoesOnToTheNextCamera)
{
    plugInTwo();
    failCalls(GetParam().operation, GetParam().skip);
    failCalls("WriteRegister");
    EXPECT_EQ(run(), -5);
    EXPECT_THAT(journal().logs(), Contains(info(GetParam().message)));
    EXPECT_THAT(journal().logsWith("Loop 1. Check configured Model"), SizeIs(1));
    EXPECT_THAT(journal().logsWith("Loop 0. Check configured Model"), IsEmpty());
    EXPECT_EQ(journal().count("Camera.Disconnect"), GetParam().disconnects);
}

INSTANTIATE_TEST_SUITE_P(
    Selection, SelectionRefusalTest,
    testing::Values(
        Refusal{"GetCameraFromIndex", 2, "can't do GetCameraFromIndex for device 0", 1},
        Refusal{"Connect", 0,
                "can't connect to Camera for device 0, is it occupied by somebody else?", 1},
        Refusal{"GetCameraInfo", 0, "can't do GetCameraInfo for connected device 0", 2}),
    [](const auto& one) { return std::string(one.param.operation); });

TEST_F(SelectionTest, GivesUpWhenNoCameraAnswers)
{
    plugInTwo();
    host().config.id = "5";
    failCalls("Connect", 0, 0);
    EXPECT_EQ(run(), 3);
    EXPECT_THAT(journal().logsWith("please attach"),
                ElementsAre(testing::MatchesRegex(
                    format("6 \\[i\\] TSus_%llu - \\([0-9]+\\) please attach configured device "
                           "\\(Model: ID:5\\)\\.\\.\\.",
                           static_cast<unsigned long long>(kxtest::kStartUs)))));
    EXPECT_EQ(journal().logs().back(), info("Loop completed (exitCode = 3)"));
}

TEST_F(SelectionTest, MayChooseACameraThatIsNotSupported)
{
    CameraText camera;
    camera.interface = "ieee1394";
    plugIn({camera});
    host().config.fnum = 1;
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(journal().logs(), Contains(info("KxPgProc entry: if=1")));
}

} // namespace
