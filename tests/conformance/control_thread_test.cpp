// The control thread: how it is started and stopped, and its loop.
#include "io_fixture.h"
#include "sanitizer.h"
#include "system_calls.h"

#include <algorithm>
#include <atomic>
#include <ctime>
#include <memory>

#include <unistd.h>

using KxPGrey::CCamCtrlThread;
using kxtest::command;
using kxtest::format;
using kxtest::host;
using kxtest::info;
using kxtest::journal;
using kxtest::kGpio0;
using kxtest::kGpio1;
using kxtest::Kind;
using kxtest::kUnset;
using kxtest::RealTime;
using kxtest::reply;
using kxtest::setRealTime;
using kxtest::strobe;
using kxtest::traceLine;
using kxtest::waitUntil;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

std::string startLine()
{
    return info(
        format("starting device detach ctrl thread (PID %u)...", static_cast<unsigned>(getpid())));
}
const std::string kEndLine = info("ctrl thread loop is done");
const std::string kStopLine = info("Stopping grab ctrl thread...");
const std::string kCancelLine = info("Cancelling grab ctrl thread...");

bool isRunning(KxPGrey::CExCam& cam)
{
    return std::atomic_ref<bool>(cam.ctrlThreadRunning).load();
}

class ControlThreadTest : public kxtest::IoTest {
protected:
    ControlThreadTest() { gKxLogLevelLib = 3; }
    void TearDown() override
    {
        thread_.reset();
        setRealTime(RealTime::refused);
        kxtest::onUsleep(nullptr);
    }
    void start(RealTime answer)
    {
        setRealTime(answer);
        thread_ = std::make_unique<CCamCtrlThread>();
        thread_->CtrlThreadStart(cam_.get());
    }
    void startAndWait()
    {
        start(RealTime::granted);
        waitUntil([this] { return isRunning(*cam_); });
    }
    static std::vector<std::string> sleeps() { return journal().lines({"usleep"}); }

    std::unique_ptr<CCamCtrlThread> thread_;
};

// ---- Start and stop.

TEST_F(ControlThreadTest, AnObjectThatWasNeverStartedDoesNothing)
{
    thread_ = std::make_unique<CCamCtrlThread>();
    thread_.reset();
    EXPECT_THAT(journal().events(), IsEmpty());
}

TEST_F(ControlThreadTest, TheStateStartsAnew)
{
    cam_->lineCmdActive = cam_->rxPinIndex = cam_->rxBits = 1;
    cam_->ioDataActive = cam_->ctrlThreadRunning = cam_->lineCmdSent = cam_->ctrlThreadStop =
        cam_->ioCfgPending = true;
    cam_->ctrlThread = pthread_self();
    start(RealTime::refused);
    EXPECT_EQ(cam_->lineCmdActive, kUnset);
    EXPECT_EQ(cam_->rxPinIndex, kUnset);
    EXPECT_EQ(cam_->rxBits, 0U);
    EXPECT_FALSE(cam_->ioDataActive);
    EXPECT_FALSE(cam_->ctrlThreadRunning);
    EXPECT_FALSE(cam_->lineCmdSent);
    EXPECT_FALSE(cam_->ctrlThreadStop);
    EXPECT_FALSE(cam_->ioCfgPending);
    EXPECT_TRUE(cam_->ctrlThreadStarted);
    EXPECT_FALSE(cam_->ctrlThread);
}

TEST_F(ControlThreadTest, WithoutPrivilegeThereIsNoThread)
{
    start(RealTime::refused);
    thread_.reset();
    EXPECT_THAT(journal().logs(), ElementsAre(info("grab ctrl thread default: policy=0 prio=0"),
                                              info("Creating ctrl thread...")));
    EXPECT_THAT(journal().lines(Kind::system),
                ElementsAre("pthread_create(SCHED_FIFO 98, explicit)"));
}

TEST_F(ControlThreadTest, IsStartedAndStopped)
{
    startAndWait();
    thread_.reset();
    EXPECT_THAT(journal().logs(),
                testing::UnorderedElementsAre(info("grab ctrl thread default: policy=0 prio=0"),
                                              info("Creating ctrl thread..."),
                                              info("grab ctrl thread new: policy=0 prio=0"),
                                              startLine(), kStopLine, kEndLine));
    EXPECT_THAT(journal().lines({"pthread_create"}),
                ElementsAre("pthread_create(SCHED_FIFO 98, explicit)"));
    EXPECT_THAT(sleeps(), Each("usleep(10000)"));
    EXPECT_GE(sleeps().size(), 1U);
    EXPECT_LT(sleeps().size(), 40U);
    EXPECT_FALSE(cam_->ctrlThreadRunning);
    EXPECT_FALSE(cam_->ctrlThreadStop);
    EXPECT_FALSE(cam_->ctrlThread);
}

TEST_F(ControlThreadTest, MayBeStoppedBeforeItCameToLife)
{
    // Sometimes before, sometimes after; each time it ends, and soon.
    for (int time = 0; time < 100; ++time) {
        journal().clear();
        start(RealTime::granted);
        thread_.reset();
        ASSERT_THAT(journal().logsWith("Cancelling"), IsEmpty());
        ASSERT_THAT(journal().logs(), Contains(startLine()));
        ASSERT_THAT(journal().logs(), Contains(kEndLine));
    }
}

TEST_F(ControlThreadTest, IsCancelledWhenItDoesNotStop)
{
    if (!kxtest::kMayCancel) {
        GTEST_SKIP() << kxtest::kMayNotCancel;
    }
    std::atomic<bool> stuck{false};
    kxtest::onUsleep([&stuck](bool realTime) {
        if (realTime) {
            stuck = true;
            kxtest::getStuck();
        }
    });
    startAndWait();
    waitUntil([&stuck] { return stuck.load(); });
    journal().clear();
    thread_.reset();
    EXPECT_THAT(journal().logs(), ElementsAre(kStopLine, kCancelLine));
    EXPECT_THAT(sleeps(), SizeIs(40));
    EXPECT_THAT(sleeps(), Each("usleep(10000)"));
}

TEST_F(ControlThreadTest, IsCancelledInTheMiddleOfAWord)
{
    if (!kxtest::kMayCancel) {
        GTEST_SKIP() << kxtest::kMayNotCancel;
    }
    // The sender's pause never ends.
    std::atomic<bool> sending{false};
    kxtest::onUsleep([&sending, this](bool realTime) {
        if (realTime && cam_->lineCmdActive == 0x392) {
            sending = true;
            kxtest::getStuck();
        }
    });
    startAndWait();
    configure({command(kGpio0, 10, 0x392)});
    waitUntil([&sending] { return sending.load(); });
    thread_.reset();
    EXPECT_THAT(journal().logs(), Contains(kCancelLine));
    EXPECT_THAT(journal().logsWith("sent data"), IsEmpty());
    EXPECT_THAT(pinWrites(), SizeIs(2)); // mode, first transition
}

TEST_F(ControlThreadTest, AThreadThatEndedByItselfIsJoined)
{
    startAndWait();
    fcsim::setAttached(1000, false);
    waitUntil([this] { return !isRunning(*cam_); });
    journal().clear();
    thread_.reset();
    EXPECT_THAT(journal().events(), IsEmpty());
    EXPECT_FALSE(cam_->ctrlThread);
}

// ---- The loop, on the test's own thread.

class ControlLoopTest : public ControlThreadTest {
protected:
    ControlLoopTest()
    {
        gKxLogLevelLib = 5;
        runUntil(1);
    }
    /// Ends the loop in the sleep of this loop.
    void runUntil(unsigned loops)
    {
        auto done = std::make_shared<unsigned>(0);
        kxtest::onUsleep([this, done, loops](bool) {
            ++*done;
            if (onLoop) {
                onLoop(*done);
            }
            if (*done == loops) {
                cam_->ctrlThreadStop = true;
            }
        });
    }
    void run() { EXPECT_EQ(CCamCtrlThread::CtrlThreadFunc(cam_.get()), nullptr); }

    std::function<void(unsigned)> onLoop;
};

TEST_F(ControlLoopTest, BeginsAndEnds)
{
    kxtest::onSyslog([this] { EXPECT_TRUE(cam_->ctrlThreadRunning); });
    run();
    kxtest::onSyslog(nullptr);
    EXPECT_THAT(journal().lines([](const kxtest::Event&) { return true; }),
                ElementsAre(startLine(), "usleep(2000)", kEndLine));
    EXPECT_FALSE(cam_->ctrlThreadRunning);
    EXPECT_FALSE(cam_->ctrlThreadStop);
}

TEST_F(ControlLoopTest, EndsAtOnceWhenItIsToldToBefore)
{
    cam_->ctrlThreadStop = cam_->ioCfgPending = true;
    run();
    EXPECT_THAT(journal().lines([](const kxtest::Event&) { return true; }),
                ElementsAre(startLine(), kEndLine));
    EXPECT_FALSE(cam_->ctrlThreadStop);
    EXPECT_TRUE(cam_->ioCfgPending);
}

TEST_F(ControlLoopTest, LooksForTheCameraEach250Loops)
{
    const std::string check = traceLine("CtrlThreadFunc", "ctrl thread is checking cam");
    for (const auto& [loops, checks] :
         std::vector<std::pair<unsigned, unsigned>>{{249, 0}, {250, 1}, {499, 1}, {500, 2}}) {
        journal().clear();
        runUntil(loops);
        run();
        EXPECT_THAT(journal().logs(), Contains(check).Times(checks));
        EXPECT_EQ(journal().count("Camera.IsConnected"), checks);
        EXPECT_THAT(sleeps(), SizeIs(loops));
    }
}

TEST_F(ControlLoopTest, EndsWhenTheCameraIsGone)
{
    runUntil(1000);
    onLoop = [](unsigned loop) {
        if (loop == 10) {
            fcsim::setAttached(1000, false);
        }
    };
    run();
    EXPECT_THAT(
        journal().logs(),
        ElementsAre(startLine(), info("device detach is detected by ctrl thread..."), kEndLine));
    EXPECT_THAT(sleeps(), SizeIs(249));
    EXPECT_FALSE(cam_->ctrlThreadRunning);
}

TEST_F(ControlLoopTest, EndsWhenTheCameraThrows)
{
    fcsim::Fault fault;
    fault.operation = "IsConnected";
    fault.throws = "gone";
    fcsim::addFault(fault);
    runUntil(1000);
    run();
    EXPECT_THAT(journal().logs(), ElementsAre(startLine(), kEndLine));
    EXPECT_FALSE(cam_->ctrlThreadRunning);
}

TEST_F(ControlLoopTest, AppliesWhatIsPendingOnce)
{
    configure({strobe(kGpio0, 0, 1)});
    runUntil(3);
    run();
    EXPECT_EQ(journal().count("Camera.SetStrobe"), 1U);
    EXPECT_THAT(journal().logsWith("apply handler entry"), SizeIs(1));
    EXPECT_FALSE(cam_->ioCfgPending);
}

TEST_F(ControlLoopTest, TriesARefusedCommandAgain)
{
    configureAndApply({command(kGpio0, 2, 1)});
    cam_->ioDataActive = false;
    pin(0).bitCount = 0; // never sent
    pin(0).pinFree = 1;
    configure({command(kGpio0, 2, 2)});
    runUntil(3);
    run();
    EXPECT_THAT(journal().logsWith("prev cmd"), SizeIs(3));
    EXPECT_TRUE(cam_->ioCfgPending);
}

TEST_F(ControlLoopTest, DoesNotForgetWhatComesMeanwhile)
{
    configure({strobe(kGpio1, 0, 1)});
    // The grab thread marks a record that was looked at already.
    kxtest::onSyslog([this] {
        if (journal().count("Camera.SetStrobe") == 1 && saved(0).loopsLeft == 0) {
            saved(0).loopsLeft = 1;
            pin(0).cfgDirty = 1;
            cam_->ioCfgPending = true;
        }
    });
    runUntil(2);
    run();
    kxtest::onSyslog(nullptr);
    EXPECT_EQ(journal().count("Camera.SetStrobe"), 2U);
    EXPECT_FALSE(cam_->ioCfgPending);
}

TEST_F(ControlLoopTest, ServesDataWhileThereIsSome)
{
    runUntil(3);
    run();
    EXPECT_THAT(journal().logsWith("data proc entry"), IsEmpty());
    cam_->ioDataActive = true;
    runUntil(3);
    run();
    EXPECT_THAT(journal().logsWith("data proc entry"), SizeIs(1));
    EXPECT_FALSE(cam_->ioDataActive);
}

TEST_F(ControlLoopTest, SendsACommandAndRestoresTheStrobe)
{
    configureAndApply({strobe(kGpio0, 0, 1)});
    configure({command(kGpio0, 2, 1)});
    runUntil(50); // sleeps of the sender included
    run();
    EXPECT_THAT(journal().logsWith("IoBox set 0:"),
                ElementsAre(HasSubstr("Pin 'Gpio0'"), HasSubstr("enqueue"), HasSubstr("sent data"),
                            HasSubstr("sent data"), HasSubstr("restored strob"),
                            HasSubstr("Pin 0, Mod 1, Src 2")));
    EXPECT_EQ(pin(0).pinFree, 1);
    EXPECT_FALSE(cam_->ioCfgPending);
    EXPECT_FALSE(cam_->ioDataActive);
}

// ---- Sessions.

class ControlSessionTest : public ControlThreadTest {
protected:
    ControlSessionTest() { host().config.fnum = 3; }
};

TEST_F(ControlSessionTest, TheThreadLivesAroundTheGrab)
{
    cam_.reset();
    setRealTime(RealTime::granted);
    host().onCall = [](std::string_view name) {
        if (name == "KxGi__SetTermSigProc") {
            waitUntil([] { return !journal().logsWith("starting device detach").empty(); });
        }
    };
    EXPECT_EQ(run(), 0);
    const std::vector<std::string> grab = journal().lines([](const kxtest::Event& event) {
        const std::string& text = event.arguments;
        return event.kind == Kind::log &&
               (text.find("KxPgProc entry") != std::string::npos ||
                text.find("Creating ctrl") != std::string::npos ||
                text.find("Using device") != std::string::npos ||
                text.find("scenario is completed") != std::string::npos ||
                text.find("Stopping grab ctrl") != std::string::npos ||
                text.find("Loop completed") != std::string::npos);
    });
    EXPECT_THAT(grab, ElementsAre(HasSubstr("KxPgProc entry"), HasSubstr("Creating ctrl"),
                                  HasSubstr("Using device"), HasSubstr("scenario is completed"),
                                  HasSubstr("Stopping grab ctrl"), HasSubstr("Loop completed")));
    EXPECT_THAT(journal().logs(), Contains(kEndLine));
}

TEST_F(ControlSessionTest, WithoutPrivilegeTheGrabGoesOn)
{
    cam_.reset();
    host().config.iobox = {strobe(kGpio0, 0, 1)};
    EXPECT_EQ(run(), 0);
    EXPECT_THAT(host().exports, SizeIs(2));
    EXPECT_THAT(journal().logs(), Contains(info("Creating ctrl thread...")));
    EXPECT_THAT(journal().logsWith("ctrl thread new"), IsEmpty());
    EXPECT_EQ(journal().count("Camera.SetStrobe"), 0U);
}

TEST_F(ControlSessionTest, IsNotStartedWithoutTheCamera)
{
    cam_.reset();
    kxtest::CameraText camera;
    camera.interface = "gige";
    plugIn({camera});
    failCalls("Connect", 2);
    journal().clear();
    EXPECT_EQ(run(), -1);
    EXPECT_THAT(journal().logs(), Contains(HasSubstr("Can't connect to camera")));
    EXPECT_THAT(journal().logsWith("ctrl thread"), IsEmpty());
}

TEST_F(ControlSessionTest, AReplyLeavesWithAFrame)
{
    // The box answers on pin 1 once the command is out: 2 bits 1 with their parity, three polls
    // for each level.
    const std::vector<std::pair<bool, unsigned>> levels = {{false, 4}, {true, 3},   {false, 3},
                                                           {true, 3},  {false, 12}, {true, 3},
                                                           {false, 3}, {true, 3},   {false, 40}};
    std::vector<bool> samples;
    for (const auto& [level, count] : levels) {
        samples.insert(samples.end(), count, level);
    }
    kxtest::onUsleep([this, samples, next = std::size_t{0}](bool realTime) mutable {
        if (realTime && cam_->lineCmdSent && next < samples.size()) {
            setRegister(1, samples[next++] ? 0x80000001 : 0x80000000);
        }
    });
    start(RealTime::granted);
    host().config.iobox = {command(kGpio0, 2, 1), reply(kGpio1, -1, 12)};
    host().config.fnum = 0;
    // The grab goes on until the word has left.
    host().checkSignal = [] {
        const auto& exports = host().exports;
        const bool received = std::any_of(exports.begin(), exports.end(), [](const auto& one) {
            return one.numbers.contains(14) && one.numbers.at(14) != 0;
        });
        return received && exports.back().numbers.at(14) == 0 ? 1 : 0;
    };
    cam_->onRetrieve = [](unsigned) {
        const timespec moment = {0, 200'000};
        nanosleep(&moment, nullptr);
    };
    EXPECT_EQ(proc_->ProcOnce(cam_.get(), &info_, &factory_), 0);
    thread_.reset();
    std::vector<std::pair<double, double>> words;
    for (const kxtest::Export& one : host().exports) {
        if (one.numbers.contains(14) && one.numbers.at(14) != 0) {
            words.emplace_back(one.numbers.at(13), one.numbers.at(14));
        }
    }
    EXPECT_THAT(words, ElementsAre(std::pair(1.0, 2.0)));
    EXPECT_EQ(cam_->rxBits, 0U);
}

} // namespace
