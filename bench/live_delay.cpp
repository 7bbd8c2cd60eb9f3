// Prints how soon a change reaches the pictures of a running grab: a changed configuration file, a
// reload, and the calculation of a look-up table.
//
// kxhost runs as a process of its own, with a simulated camera that keeps its pace. With a
// --benchmark_min_time, as short runs of all benchmarks have it, each change is made only twice.
#include "live_grab.h"
#include "scene_file.h"
#include "temporary_folder.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using kxtest::GrabSession;
using kxtest::LiveGrab;
using Json = nlohmann::json;

constexpr unsigned kWidth = 640;
constexpr unsigned kHeight = 480;
constexpr double kFrameRate = 120;

/// Levels of the scene's left and right edge, of 255.
constexpr unsigned kDark = 80;
constexpr unsigned kBright = 100;

/// How long the new state took to show.
struct Delay {
    unsigned frames = 0;   ///< exposed behind the change and before the first frame that shows it
    double exposureMs = 0; ///< from the change to the start of that frame's exposure
    double diskMs = 0;     ///< from the change to that frame's picture on disk
};

std::uint64_t microseconds(std::chrono::system_clock::time_point time)
{
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::microseconds>(time.time_since_epoch()).count());
}

std::uint64_t writtenUs(const std::string& file)
{
    return microseconds(std::chrono::time_point_cast<std::chrono::system_clock::duration>(
        std::chrono::file_clock::to_sys(std::filesystem::last_write_time(file))));
}

class Bench {
public:
    Bench() : grab_(prepare(session_)) {}
    ~Bench() { grab_.finish(); }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    using Look = std::function<bool(const std::string& pixels)>;

    /// Makes the change and waits for the first picture that looks as wanted.
    Delay measure(const std::function<void(LiveGrab&)>& change, const Look& isNew)
    {
        grab_.waitForMoreFrames(10);
        Delay delay;
        const std::uint64_t start = microseconds(std::chrono::system_clock::now());
        change(grab_);
        const Json first = grab_.waitForFrame("frame that shows the change", [&](const Json& each) {
            if (each["timestamp_us"].get<std::uint64_t>() < start) {
                return false;
            }
            const bool found = isNew(kxtest::readText(file(each)));
            delay.frames += found ? 0 : 1;
            return found;
        });
        const auto since = [start](std::uint64_t us) {
            return static_cast<double>(us - start) / 1000;
        };
        delay.exposureMs = since(first["timestamp_us"]);
        delay.diskMs = since(writtenUs(file(first)));
        return delay;
    }

private:
    static GrabSession& prepare(GrabSession& session)
    {
        const std::string scene = session.folder().file("scene.png");
        kxtest::writeGreyScene(scene, kWidth, kHeight, [](unsigned x, unsigned) {
            return static_cast<std::uint16_t>(257 * (kDark + (kBright - kDark) * x / kWidth));
        });
        kxtest::TestSensor sensor{kWidth, kHeight, "", kFrameRate, true, false, 2, 0};
        session.bus = kxtest::busWith(sensor, kxtest::sceneTable(scene, 4));
        session.settings = {"output.format=raw", "lut.mode=manual"};
        session.configuration = "[acquisition]\ngain = \"0 dB\"\n";
        return session;
    }

    std::string file(const Json& frame) const
    {
        return session_.output(frame["pictures"][0]["file"]);
    }

    GrabSession session_;
    LiveGrab grab_;
};

/// The smallest and the largest level of a picture.
std::pair<unsigned, unsigned> levelsOf(const std::string& pixels)
{
    const auto [least, most] = std::ranges::minmax(
        pixels, {}, [](char pixel) { return static_cast<unsigned char>(pixel); });
    return {static_cast<unsigned char>(least), static_cast<unsigned char>(most)};
}

/// With the higher gain, and without it.
bool isLoud(const std::string& pixels)
{
    return levelsOf(pixels).first > 3 * kDark / 2;
}
bool isQuiet(const std::string& pixels)
{
    return !isLoud(pixels);
}

/// Through a calculated table, and without one.
bool isSpread(const std::string& pixels)
{
    const auto [least, most] = levelsOf(pixels);
    return most - least > 2 * (kBright - kDark);
}
bool isClear(const std::string& pixels)
{
    return !isSpread(pixels);
}

void print(const char* what, std::vector<Delay> delays)
{
    const auto middle = [&](auto member) {
        std::ranges::sort(delays, {}, member);
        return delays[delays.size() / 2].*member;
    };
    const auto most = [&](auto member) { return std::ranges::max(delays, {}, member).*member; };
    std::printf("| %s | %u (%u) | %.1f (%.1f) | %.1f (%.1f) |\n", what, middle(&Delay::frames),
                most(&Delay::frames), middle(&Delay::exposureMs), most(&Delay::exposureMs),
                middle(&Delay::diskMs), most(&Delay::diskMs));
}

void writeGain(LiveGrab& grab, unsigned gain)
{
    grab.writeConfiguration("[acquisition]\ngain = \"" + std::to_string(gain) + " dB\"\n");
}

void renameGain(LiveGrab& grab, unsigned gain)
{
    grab.renameConfiguration("[acquisition]\ngain = \"" + std::to_string(gain) + " dB\"\n");
}

/// The gain goes up, which is measured, and down again.
void benchGain(Bench& bench, const char* what, unsigned count,
               const std::function<void(LiveGrab&, unsigned gain)>& setGain)
{
    std::vector<Delay> delays;
    for (unsigned i = 0; i < count; ++i) {
        delays.push_back(bench.measure([&](LiveGrab& grab) { setGain(grab, 6); }, isLoud));
        bench.measure([&](LiveGrab& grab) { setGain(grab, 0); }, isQuiet);
    }
    print(what, delays);
}

void benchTable(Bench& bench, unsigned count)
{
    std::vector<Delay> delays;
    for (unsigned i = 0; i < count; ++i) {
        delays.push_back(bench.measure([](LiveGrab& grab) { grab.signal(SIGUSR1); }, isSpread));
        // A reload puts the configuration in force again, in which there is no table.
        bench.measure([](LiveGrab& grab) { grab.signal(SIGHUP); }, isClear);
    }
    print("`SIGUSR1`", delays);
}

void benchAll(unsigned count)
{
    std::printf("%u x %u pixels, %.0f frames/s, 2 ms exposure, %u times each; median (largest)\n\n",
                kWidth, kHeight, kFrameRate, count);
    std::printf("| change | frames before it shows | ms to its exposure | ms to the picture |\n"
                "| --- | --- | --- | --- |\n");
    Bench bench;
    benchGain(bench, "file written in place", count, writeGain);
    benchGain(bench, "file replaced by rename", count, renameGain);
    benchGain(bench, "file written, then `SIGHUP`", count, [](LiveGrab& grab, unsigned gain) {
        writeGain(grab, gain);
        grab.signal(SIGHUP);
    });
    benchTable(bench, count);
}

} // namespace

int main(int argc, char** argv)
{
    const bool isShort = argc > 1 && std::string_view(argv[1]).starts_with("--benchmark_min_time");
    try {
        benchAll(isShort ? 2 : 25);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
