// The camera of the benchmarks: a simulated one that delivers at once and draws nothing.
#include "bench_camera.h"

#include "flycapture2/sim/control/sim_control.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace kxbench {

namespace {

void require(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "bench: %s\n", what);
        std::exit(1);
    }
}

} // namespace

void loadCamera(unsigned width, unsigned height, const std::string& sensor)
{
    const std::string toml = "[[camera]]\n"
                             "model = \"Bench\"\n"
                             "serial = 1\n"
                             "interface = \"usb3\"\n"
                             "register_time_us = 0\n"
                             "sensor = { width = " +
                             std::to_string(width) + ", height = " + std::to_string(height) +
                             (sensor.empty() ? "" : ", ") + sensor +
                             " }\n"
                             "delivery = { paced = false, latency_us = 0 }\n"
                             "scene = { kind = \"none\" }\n";
    const std::string error = fcsim::loadBus(toml, "bench");
    require(error.empty(), error.c_str());
}

OpenCamera::OpenCamera()
{
    using FlyCapture2::PGRERROR_OK;
    FlyCapture2::BusManager bus;
    require(bus.GetCameraFromIndex(0, &guid) == PGRERROR_OK, "no camera on the bus");
    require(camera.Connect(&guid) == PGRERROR_OK, "cannot connect the camera");
    require(camera.GetCameraInfo(&info) == PGRERROR_OK, "the camera tells nothing");
}

OpenCamera::~OpenCamera()
{
    static_cast<void>(camera.Disconnect());
}

} // namespace kxbench
