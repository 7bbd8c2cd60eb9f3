// The simulation in steady state: no allocation per frame, and calls from other threads meanwhile.
#include "sensor_fixture.h"
#include "sim_fixture.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <new>
#include <thread>
#include <vector>

using namespace FlyCapture2;

namespace {

std::atomic<std::size_t> allocations{0};

} // namespace

// The library's allocations come here too, as the program's symbols go before. Not inlined, or the
// compiler takes the pair of malloc and delete for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

class SimSteady : public SimTest {
protected:
    /// What a grab loop asks the camera for in each frame.
    bool oneFrame()
    {
        Image image;
        unsigned clock = 0;
        CameraStats stats;
        bool good = camera.RetrieveBuffer(&image) == PGRERROR_OK;
        good = camera.ReadRegister(0x1EA8, &clock) == PGRERROR_OK && good;
        for (const PropertyType type : {GAIN, SHUTTER}) {
            PropertyInfo info(type);
            Property property(type);
            good = camera.GetPropertyInfo(&info) == PGRERROR_OK && good;
            good = camera.GetProperty(&property) == PGRERROR_OK && good;
        }
        good = camera.GetStats(&stats) == PGRERROR_OK && good;
        return good && image.GetMetadata().embeddedGain == 0;
    }
};

TEST_F(SimSteady, AFrameAllocatesNothing)
{
    ASSERT_EQ(fcsim::loadBus("[[camera]]\nmodel = \"A\"\nserial = 7001\ninterface = \"usb3\"\n"
                             "register_time_us = 0\n[camera.sensor]\nwidth = 320\nheight = 240\n",
                             "test.toml"),
              "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    for (int warmUp = 0; warmUp < 20; ++warmUp) {
        ASSERT_TRUE(oneFrame());
    }
    const std::size_t before = allocations.load();
    bool good = true;
    for (int frame = 0; frame < 500; ++frame) {
        good = oneFrame() && good;
    }
    EXPECT_TRUE(good);
    EXPECT_EQ(allocations.load() - before, 0U);
}

/// Also with everything on that a picture can answer to, and metered.
TEST_F(SimSteady, APictureAllocatesNothingWhateverIsSet)
{
    const fcsim::SensorState busy = fcsim::busyState();
    fcsim::SensorState other = busy;
    other.gamma = 2;
    fcsim::Renderer renderer({}, fcsim::noisySensor(RGGB));
    for (const PixelFormat format : {PIXEL_FORMAT_MONO8, PIXEL_FORMAT_RAW8, PIXEL_FORMAT_422YUV8}) {
        fcsim::FrameRequest request = fcsim::wholeFrame(format, 0, busy);
        fcsim::Bytes frame = fcsim::frameOf(renderer, request);
        double mean = renderer.exposedMean(request);
        const std::size_t before = allocations.load();
        for (request.number = 1; request.number < 10; ++request.number) {
            request.state = request.number % 3 == 0 ? other : busy;
            mean += renderer.exposedMean(request);
            renderer.render(request, frame.data());
        }
        EXPECT_EQ(allocations.load() - before, 0U) << fcsim::pixelFormatName(format);
        EXPECT_GT(mean, 0);
    }
}

TEST_F(SimSteady, AutomaticFunctionsAndChangesAllocateNothing)
{
    ASSERT_EQ(fcsim::loadBus("[[camera]]\nmodel = \"A\"\nserial = 7001\ninterface = \"usb3\"\n"
                             "register_time_us = 0\n[camera.sensor]\nwidth = 320\nheight = 240\n"
                             "[camera.properties.SHUTTER]\nautomatic = true\n"
                             "[camera.properties.AUTO_EXPOSURE]\nswitched_on = true\n",
                             "test.toml"),
              "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    configure(2000, BUFFER_FRAMES);
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    std::size_t before = 0;
    bool good = true;
    for (int frame = 0; frame < 300; ++frame) {
        Property target(AUTO_EXPOSURE);
        good = camera.GetProperty(&target) == PGRERROR_OK && good;
        target.absValue = static_cast<float>(frame % 3) - 1; // nothing ever settles
        good = camera.SetProperty(&target) == PGRERROR_OK && good;
        good = camera.EnableLUT(frame % 2 == 0) == PGRERROR_OK && good;
        good = oneFrame() && good;
        fcsim::advanceClock(static_cast<std::uint64_t>(frame % 7) * 10'000); // some frames wait
        before = frame == 49 ? allocations.load() : before;
    }
    EXPECT_TRUE(good);
    EXPECT_EQ(allocations.load() - before, 0U);
}

TEST_F(SimSteady, ChangesOfAStalledCameraAllocateNothing)
{
    connect("[[camera.fault]]\nkind = \"stall\"\nframe = 1\n");
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    std::size_t before = 0;
    Property gain(GAIN);
    ASSERT_EQ(camera.GetProperty(&gain).GetType(), PGRERROR_OK);
    for (int change = 0; change < 1000; ++change) {
        gain.absValue = static_cast<float>(change % 20);
        ASSERT_EQ(camera.SetProperty(&gain).GetType(), PGRERROR_OK);
        fcsim::advanceClock(40'000);
        before = change == 9 ? allocations.load() : before;
    }
    EXPECT_EQ(allocations.load() - before, 0U);
}

TEST_F(SimSteady, OtherThreadsChangeSettingsWhileFramesAreTaken)
{
    ASSERT_EQ(fcsim::loadBus("[[camera]]\nmodel = \"A\"\nserial = 7001\ninterface = \"usb3\"\n"
                             "[camera.sensor]\nwidth = 320\nheight = 240\n"
                             "[camera.properties.SHUTTER]\nautomatic = true\nvalue = 1.0\n"
                             "[camera.properties.FRAME_RATE]\nvalue = 50.0\n",
                             "test.toml"),
              "");
    ASSERT_EQ(camera.Connect(nullptr).GetType(), PGRERROR_OK);
    fcsim::useHostClock();
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    std::atomic<bool> stop{false};
    std::atomic<unsigned> changes{0};
    std::thread other([&] {
        std::vector<unsigned> table(512, 200);
        while (!stop.load()) {
            Property gain(GAIN);
            bool good = camera.GetProperty(&gain) == PGRERROR_OK;
            gain.absValue = static_cast<float>(changes.load() % 6);
            good = camera.SetProperty(&gain) == PGRERROR_OK && good;
            good = camera.SetLUTChannel(changes.load() % 2, 0, 512, table.data()) == PGRERROR_OK &&
                   good;
            good = camera.EnableLUT(changes.load() % 3 == 0) == PGRERROR_OK && good;
            changes.fetch_add(good ? 1 : 0);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    bool good = true;
    // 20 ms each; far more only where the other thread gets no processor.
    for (int frame = 0; frame < 10 || (changes.load() <= 10 && frame < 500); ++frame) {
        good = oneFrame() && good;
    }
    stop = true;
    other.join();
    EXPECT_TRUE(good);
    EXPECT_GT(changes.load(), 10U);
}

TEST_F(SimSteady, OtherThreadsReadRegistersWhileARetrievalWaits)
{
    connect();
    fcsim::useHostClock();
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    std::atomic<bool> stop{false};
    std::atomic<unsigned> reads{0};
    std::thread reader([&] {
        unsigned value = 0;
        while (!stop.load()) {
            if (camera.ReadRegister(0x1110, &value) == PGRERROR_OK && camera.IsConnected()) {
                reads.fetch_add(1);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    bool good = true;
    // 40 ms each; far more only where the other thread gets no processor.
    for (int frame = 0; frame < 5 || (reads.load() <= 10 && frame < 250); ++frame) {
        good = oneFrame() && good;
    }
    stop = true;
    reader.join();
    EXPECT_TRUE(good);
    EXPECT_GT(reads.load(), 10U);
}

TEST_F(SimSteady, AStopEndsTheWaitOfAnotherThread)
{
    connect("[[camera.fault]]\nkind = \"stall\"\nframe = 0\n");
    fcsim::useHostClock();
    ASSERT_EQ(camera.StartCapture().GetType(), PGRERROR_OK);
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_EQ(camera.StopCapture().GetType(), PGRERROR_OK);
    });
    Image image;
    EXPECT_EQ(camera.RetrieveBuffer(&image).GetType(), PGRERROR_ISOCH_NOT_STARTED);
    stopper.join();
}

} // namespace
