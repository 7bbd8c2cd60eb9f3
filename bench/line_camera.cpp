// The camera of the line benchmarks: simulated, with an I/O box on its pins 0 and 1, and with a
// record of when its input was polled.
#include "line_camera.h"

#include "bench_host.h"
#include "control/sim_control.h"
#include "kx_pg_proc.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

namespace kxbench {

namespace {

constexpr unsigned kReplyRegister = 0x1120;
/// Host's ids of the pins, and its codes of what they do.
constexpr std::int32_t kGpio0 = 9;
constexpr std::int32_t kGpio1 = 10;
constexpr std::int32_t kUserData = 5;
constexpr std::int32_t kOutput = 1;
constexpr std::int32_t kInput = 2;

void require(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "bench: %s\n", what);
        std::exit(1);
    }
}

std::string busOf(Box box, unsigned registerUs)
{
    return "[[camera]]\n"
           "model = \"Bench\"\n"
           "serial = 1\n"
           "interface = \"usb3\"\n"
           "register_time_us = " +
           std::to_string(registerUs) +
           "\n"
           "sensor = { width = 64, height = 64 }\n"
           "scene = { kind = \"none\" }\n"
           "[[camera.io_box]]\n"
           "listens_on = 0\n"
           "answers_on = 1\n"
           "misbehaviour = \"" +
           (box == Box::echoes ? "none" : "silence") + "\"\n";
}

void shortPause()
{
    usleep(1000);
}

} // namespace

LineCamera::LineCamera(Box box, unsigned registerUs)
{
    using FlyCapture2::PGRERROR_OK;
    const std::string error = fcsim::loadBus(busOf(box, registerUs), "bench");
    require(error.empty(), error.c_str());
    FlyCapture2::BusManager bus;
    FlyCapture2::PGRGuid guid;
    require(bus.GetCameraFromIndex(0, &guid) == PGRERROR_OK, "no camera on the bus");
    require(Connect(&guid) == PGRERROR_OK, "cannot connect the camera");
}

LineCamera::~LineCamera()
{
    static_cast<void>(Disconnect());
}

void LineCamera::send(std::uint32_t word, std::int32_t polls)
{
    host().lines = {{.pin = kGpio0,
                     .mode = kOutput,
                     .source = kUserData,
                     .parameter0 = kCommandBits,
                     .parameter1 = static_cast<std::int32_t>(word)},
                    {.pin = kGpio1, .mode = kInput, .source = kUserData, .parameter0 = polls}};
    KxPGrey::CCamProc().ProcParametrizeCamOutLines(this);
}

Times LineCamera::periods(std::size_t count)
{
    stamps_.assign(count + 1, 0);
    taken_ = 0;
    wanted_ = count + 1;
    while (taken_ <= count) {
        shortPause();
    }
    wanted_ = 0;
    Times periods;
    for (std::size_t poll = 1; poll < stamps_.size(); ++poll) {
        periods.add(stamps_[poll] - stamps_[poll - 1]);
    }
    return periods;
}

void LineCamera::waitForPoll() const
{
    const unsigned before = polls_;
    while (polls_ == before) {
        shortPause();
    }
}

FlyCapture2::Error LineCamera::ReadRegister(unsigned int address, unsigned int* value)
{
    if (address == kReplyRegister) {
        ++polls_;
        const std::size_t poll = taken_;
        if (poll < wanted_) {
            stamps_[poll] = nowUs();
            taken_ = poll + 1;
        }
    }
    return CExCam::ReadRegister(address, value);
}

} // namespace kxbench
