// The camera's I/O lines through kxhost: strobes, commands to a simulated I/O box, and its replies.
#include "live_frames.h"
#include "stall_watch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>

#include <unistd.h>

namespace {

using kxtest::GrabSession;
using kxtest::LiveGrab;
using Json = nlohmann::json;

constexpr const char* kStrobe = "[[iobox]]\npin = \"gpio0\"\nmode = \"output\"\nsource = "
                                "\"strobe\"\ndelay = \"500 us\"\nduration = \"1 ms\"\n";
/// With gaps that suit the slow replies of the box here.
constexpr const char* kInput = "[[iobox]]\npin = \"gpio1\"\nmode = \"input\"\nsource = "
                               "\"data\"\ngap_polls = 30\n";
constexpr const char* kStrobeOn =
    "### set strobe on pin 0: onOff=1 (delay=0.500000, duration=1.000000, polarity=1) ###";
/// What these tests do not send.
constexpr const char* kNeverAnswers = "[[camera.io_box.reply]]\ncommand = 77\nword = 1\nbits = 2\n";
constexpr const char* kNoRealTime =
    "kxhost: The settings of [[iobox]] will have no effect: this process may not run a thread with "
    "real-time priority 98 (Operation not permitted). \"kxhost doctor\" says how to give it the "
    "limit rtprio 98; the grab goes on without.";
constexpr const char* kRestored = "restored strob";
/// A quarter of a frame.
constexpr auto kStall = std::chrono::milliseconds(4);

std::string command(const std::string& word, unsigned bits)
{
    return "[[iobox]]\npin = \"gpio0\"\nmode = \"output\"\nsource = \"data\"\nbits = " +
           std::to_string(bits) + "\nword = " + word + "\n";
}

/// Exposure and rate of all these grabs.
std::string withLight(const std::string& pins, const std::string& gain = "0 dB")
{
    return "[acquisition]\nframe_rate = 60\nexposure = \"4 ms\"\ngain = \"" + gain + "\"\n" + pins;
}

bool runs(std::vector<std::string> starter, const std::vector<std::string>& program)
{
    starter.insert(starter.end(), program.begin(), program.end());
    return kxtest::run(starter).code == 0;
}

/// Whether a program started this way may run a thread like the plug-in's control thread.
bool allowsRealTime(const std::vector<std::string>& starter = {})
{
    return runs(starter, {"/usr/bin/chrt", "--fifo", "98", "/bin/true"});
}

/// What takes the right to real-time threads from a program.
std::vector<std::string> withoutRealTime()
{
    std::vector<std::string> starter = {"/usr/bin/prlimit", "--rtprio=0"};
    if (geteuid() == 0) {
        starter.insert(starter.end(),
                       {"/usr/bin/setpriv", "--bounding-set=-sys_nice", "--inh-caps=-sys_nice"});
    }
    return starter;
}

/// A camera of 60 frames a second whose pins 0 and 1 lead to an I/O box.
class IoboxTest : public testing::Test {
protected:
    /// `keys` are further ones of the box. Its replies are slow, so that a machine which stalls for
    /// 20 ms does not spoil them. Paced frames are lost on a busy machine by who has no
    /// real time.
    void useBox(const std::string& keys = "", bool paced = true)
    {
        kxtest::TestSensor sensor;
        sensor.frameRate = 60;
        sensor.paced = paced;
        session_.bus = kxtest::busWith(
            sensor, "[[camera.io_box]]\nlistens_on = 0\nanswers_on = 1\nreply_half_period_us = "
                    "30000\nreply_gap_us = 110000\nlog = \"" +
                        boxLog() + "\"\n" + keys);
        session_.set("log.level=info");
        session_.set("output.format=none");
    }

    /// Runs an example on its bus to its end. The sensor is made smaller, so that a slow machine
    /// draws its pictures in time.
    kxtest::Finished runExample(const std::string& name)
    {
        const std::string examples = KX_TEST_EXAMPLES "/";
        session_.bus = kxtest::readText(examples + "io-box.toml");
        replaceInBus("log = \"io-box.log\"", "log = \"" + boxLog() + "\"");
        replaceInBus("width = 640", "width = 160");
        replaceInBus("height = 480", "height = 120");
        session_.settings = {"log.level=info", "output.format=none"};
        session_.arguments = {"-c", examples + name};
        kxtest::Finished finished = session_.run();
        EXPECT_EQ(finished.code, 0);
        EXPECT_EQ(finished.err, "");
        EXPECT_EQ(expectFrames(), 0U);
        return finished;
    }

    void replaceInBus(const std::string& before, const std::string& after)
    {
        const std::size_t place = session_.bus.find(before);
        ASSERT_NE(place, std::string::npos) << before;
        session_.bus.replace(place, before.size(), after);
    }

    std::string boxLog() const { return session_.folder().file("box.log"); }

    /// What the box has heard and answered, without the times.
    std::vector<std::string> heard() const
    {
        std::vector<std::string> lines = kxtest::readLines(boxLog());
        for (std::string& line : lines) {
            line.erase(0, line.find(' ') + 1);
            line.resize(std::min(line.size(), line.find(" bits")));
        }
        return lines;
    }

    /// The frames that brought a word.
    std::vector<Json> framesWithWord() const
    {
        std::vector<Json> frames = session_.frames();
        std::erase_if(frames, [](const Json& frame) {
            EXPECT_EQ(frame.contains("rx_bits"), frame.contains("rx_data"));
            return !frame.contains("rx_bits");
        });
        return frames;
    }

    void finish(LiveGrab& grab)
    {
        EXPECT_EQ(grab.finish(), 0) << grab.process().standardError();
        EXPECT_EQ(expectFrames(), 0U);
    }

    /// No frame is lost, unless the machine stalls. Returns how often capture started again.
    std::size_t expectFrames() const
    {
        return isSteady() ? kxtest::expectNothingLost(session_)
                          : kxtest::expectNothingLostBehindTheCamera(session_);
    }

    /// What the box has heard and answered, unless the machine stalls, which can spoil a word.
    void expectHeard(const std::vector<std::string>& expected) const
    {
        if (isSteady()) {
            EXPECT_EQ(heard(), expected) << kxtest::readText(boxLog());
        }
    }

    bool isSteady() const { return watch_ && watch_->longest() < kStall; }

    GrabSession session_;
    std::optional<kxtest::StallWatch> watch_;
};

/// With real time, for the grab too, so that a busy machine does not slow it down.
class SessionIobox : public IoboxTest {
    void SetUp() override
    {
        session_.starter = {"/usr/bin/chrt", "--fifo", "10"};
        if (!allowsRealTime()) {
            GTEST_SKIP() << "threads with real-time priority are not allowed here";
        }
        watch_.emplace();
    }
};

class SessionIoboxWithoutRight : public IoboxTest {
    void SetUp() override
    {
        session_.starter = withoutRealTime();
        if (!runs(session_.starter, {"/bin/true"}) || allowsRealTime(session_.starter)) {
            GTEST_SKIP() << "the right to real-time threads cannot be taken from a program here";
        }
    }
};

bool hasWord(const Json& frame)
{
    return frame.contains("rx_bits");
}

TEST_F(SessionIobox, AReplyComesWithAFrameAndTheStrobeComesBack)
{
    useBox("[[camera.io_box.reply]]\ncommand = 914\nword = 0x155\nbits = 10\n");
    session_.configuration = withLight(kStrobe + command("0x392", 10) + kInput);
    session_.quiet = false;
    LiveGrab grab(session_);
    grab.waitForLog("sent data 0x00000392 (10 bits)");
    const Json frame = grab.waitForFrame("frame with a reply", hasWord);
    EXPECT_EQ(frame["rx_data"], 0x155);
    EXPECT_EQ(frame["rx_bits"], 10);
    grab.waitForLog(kRestored);
    grab.waitForLog(kStrobeOn);
    grab.waitForMoreFrames(5);
    finish(grab);

    expectHeard({"command 0x00000392 10", "reply   0x00000155 10"});
    EXPECT_EQ(framesWithWord(), std::vector{frame});
    EXPECT_EQ(session_.summary()["received"],
              (Json{{"words", 1},
                    {"last", {{"number", frame["number"]}, {"rx_data", 0x155}, {"rx_bits", 10}}}}));
    EXPECT_NE(grab.process().standardOutput().find("received  1 word, 0x155 (10 bits) with frame " +
                                                   frame["number"].dump()),
              std::string::npos)
        << grab.process().standardOutput();
}

TEST_F(SessionIobox, AStrobeAloneIsSetAtTheStart)
{
    useBox();
    session_.configuration = withLight(kStrobe);
    session_.quiet = false;
    LiveGrab grab(session_);
    grab.waitForLog(kStrobeOn);
    grab.waitForMoreFrames(5);
    finish(grab);
    EXPECT_EQ(heard(), std::vector<std::string>{});
    EXPECT_EQ(grab.process().standardOutput().find("received "), std::string::npos);
}

TEST_F(SessionIobox, ACommandNeedsNoReply)
{
    useBox(kNeverAnswers);
    session_.configuration = withLight(command("0b101", 3));
    LiveGrab grab(session_);
    grab.waitForLog("sent data 0x00000005 (3 bits)");
    grab.waitForMoreFrames(5);
    finish(grab);
    expectHeard({"command 0x0000000A 4"});
    EXPECT_EQ(framesWithWord(), std::vector<Json>{});
    EXPECT_EQ(session_.summary()["received"], (Json{{"words", 0}, {"last", nullptr}}));
}

TEST_F(SessionIobox, AReplyOfWrongParityIsRejected)
{
    useBox("misbehaviour = \"wrong_parity\"\n");
    session_.configuration = withLight(command("2", 2) + kInput);
    session_.quiet = false;
    LiveGrab grab(session_);
    grab.waitForLog("pin 1 RX: data 0x00000008 (4 bits) is rejected (too short), parity - FAIL!");
    grab.waitForMoreFrames(5);
    finish(grab);
    EXPECT_EQ(framesWithWord(), std::vector<Json>{});
    EXPECT_NE(grab.process().standardOutput().find("received  no words\n"), std::string::npos);
}

TEST_F(SessionIobox, ASilentBoxIsWaitedForInVain)
{
    useBox("misbehaviour = \"silence\"\n");
    session_.configuration = withLight(kStrobe + command("2", 2) + kInput + "timeout_polls = 60\n");
    LiveGrab grab(session_);
    grab.waitForLog("pin 1 RX: initial waiting is timed out - last lineBit 0");
    grab.waitForLog(kRestored);
    grab.waitForMoreFrames(5);
    finish(grab);
    EXPECT_EQ(framesWithWord(), std::vector<Json>{});
}

TEST_F(SessionIobox, EachPassSendsTheCommandAsItIsThen)
{
    useBox(kNeverAnswers);
    session_.configuration = withLight(command("2", 2));
    LiveGrab grab(session_);
    grab.waitForLog("sent data 0x00000002 (2 bits)");
    grab.waitForMoreFrames(2); // which give the pin back
    grab.writeConfiguration(withLight(command("1", 2)));
    grab.waitForMessage("iobox.word in force from now on");
    grab.waitForLog("sent data 0x00000001 (2 bits)");
    grab.waitForMoreFrames(2);
    grab.writeConfiguration(withLight(command("1", 2), "3 dB"));
    grab.waitForLog("] Proc IoBox set 0: pin=0 sent data 0x00000001 (2 bits)");
    grab.waitForLog("enqueue gpio cmd '1'");
    grab.waitForLog("sent data 0x00000001 (2 bits)");
    grab.waitForMoreFrames(5);
    finish(grab);
    expectHeard({"command 0x00000002 2", "command 0x00000001 2", "command 0x00000001 2"});
}

/// The plug-in leaves an input alone that only has other parameters, so the grab starts again.
TEST_F(SessionIobox, AnInputTakesOtherParametersWithAReload)
{
    useBox(kNeverAnswers);
    session_.configuration = withLight(kInput + std::string("timeout_polls = 60\n"));
    LiveGrab grab(session_);
    grab.waitForLog("user input with timeout '60'");
    grab.waitForMoreFrames(2);
    grab.writeConfiguration(withLight(kInput + std::string("timeout_polls = 70\n")));
    grab.waitForMessage("iobox.timeout_polls takes a reload");
    grab.signal(SIGHUP);
    grab.waitForMessage("the grab ends and starts again with it");
    grab.waitForLog("user input with timeout '70'");
    grab.waitForMoreFrames(2);
    EXPECT_EQ(grab.finish(), 0);
    EXPECT_EQ(expectFrames(), 1U);
}

TEST_F(SessionIobox, TheExampleOfAStrobeSetsIt)
{
    const std::string out = runExample("strobe.toml").out;
    EXPECT_NE(out.find("### set strobe on pin 2: onOff=1 (delay=0.500000, duration=2.000000, "
                       "polarity=1) ###"),
              std::string::npos)
        << out;
    EXPECT_EQ(heard(), std::vector<std::string>{});
}

TEST_F(SessionIobox, TheExampleOfACommandSendsIt)
{
    runExample("command.toml");
    ASSERT_FALSE(heard().empty());
    if (isSteady()) {
        EXPECT_EQ(heard()[0], "command 0x00000392 10");
    }
    EXPECT_EQ(framesWithWord(), std::vector<Json>{});
}

TEST_F(SessionIobox, TheExampleOfAReplyHasItInTheMetadata)
{
    std::string out;
    std::vector<Json> frames;
    // Its reply is as fast as it may be: a machine that stalls can spoil one, but not each.
    for (int attempt = 0; attempt < 6 && frames.empty(); ++attempt) {
        std::filesystem::remove_all(session_.output());
        out = runExample("command-reply.toml").out;
        frames = framesWithWord();
    }
    ASSERT_EQ(frames.size(), 1U);
    EXPECT_EQ(frames[0]["rx_data"], 0x155);
    EXPECT_EQ(frames[0]["rx_bits"], 10);
    EXPECT_NE(out.find("### set strobe on pin 0: onOff=1"), std::string::npos) << out;
}

TEST_F(SessionIoboxWithoutRight, OnlyTheLinesAreMissing)
{
    useBox("", false);
    session_.configuration = withLight(kStrobe + command("0x392", 10) + kInput);
    session_.set("grab.frames=10");
    const kxtest::Finished finished = session_.run();
    EXPECT_EQ(finished.code, 0);
    EXPECT_EQ(finished.err, std::string(kNoRealTime) + "\n");
    EXPECT_NE(finished.out.find("Creating ctrl thread..."), std::string::npos);
    EXPECT_EQ(finished.out.find("grab ctrl thread new:"), std::string::npos);
    EXPECT_NE(finished.out.find("IoBox settings handler entry: numCfg 3"), std::string::npos);
    EXPECT_EQ(finished.out.find("set strobe"), std::string::npos);
    EXPECT_EQ(heard(), std::vector<std::string>{});
    EXPECT_EQ(session_.frames().size(), 10U);
    EXPECT_EQ(session_.summary()["lost"]["camera"], 0);
}

TEST_F(SessionIoboxWithoutRight, LinesThatComeLaterAreSaidToBeMissing)
{
    useBox("", false);
    session_.configuration = withLight("");
    LiveGrab grab(session_);
    grab.waitForMoreFrames(1);
    grab.writeConfiguration(withLight(kStrobe));
    EXPECT_EQ(grab.waitForMessage("[[iobox]]"), kNoRealTime);
    grab.waitForMessage("in force from now on");
    EXPECT_EQ(grab.finish(), 0);
}

} // namespace
