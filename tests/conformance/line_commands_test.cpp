// Square waves and data words on a line: transitions, pauses, result codes.
#include "camera_test.h"

using KxPGrey::kPgPin0;
using kxtest::journal;
using kxtest::Kind;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr unsigned kSerial = 1000;
constexpr unsigned kPinRegister = 0x1110;

class LineCommandsTest : public kxtest::CameraTest {
protected:
    LineCommandsTest()
    {
        connect();
        fcsim::pokeRegister(kSerial, kPinRegister, 0x80010000);
    }
    /// What reached the line, in order: "0" and "1" for levels, the length of a pause otherwise.
    static std::vector<std::string> line()
    {
        std::vector<std::string> line;
        for (const kxtest::Event& event : journal().events()) {
            if (event.name == "Camera.WriteRegister") {
                line.push_back(event.arguments.substr(event.arguments.size() - 1));
            } else if (event.name == "usleep") {
                line.push_back(event.arguments);
            }
        }
        return line;
    }
};

TEST_F(LineCommandsTest, APulseIsTwoTransitionsAndTheGapsFollow)
{
    EXPECT_EQ(cam_->ExSendLineCmdBy2bits(kPgPin0, 0, 2, 2000, true, true), 0);
    EXPECT_THAT(line(), ElementsAre("0", "2000", "1", "2000", "38000", //
                                    "0", "2000", "1", "2000", "38000", "42000"));
    EXPECT_THAT(journal().logs(), IsEmpty());
}

} // namespace
