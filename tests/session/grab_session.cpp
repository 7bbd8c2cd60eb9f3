// One grab of kxhost with the simulated cameras, as a process, and what it left on disk.
#include "grab_session.h"

#include "ledger_check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace kxtest {

using Json = nlohmann::json;

std::string kxhostPath()
{
    return KX_TEST_KXHOST;
}

std::string busWith(const TestSensor& sensor, const std::string& extra)
{
    std::ostringstream bus;
    bus << "[[camera]]\nmodel = \"" << kModel << "\"\nserial = " << kSerial
        << "\ninterface = \"usb3\"\nsensor = { width = " << sensor.width
        << ", height = " << sensor.height << ", frame_rate = " << std::fixed << sensor.frameRate
        << ", colour = ";
    if (sensor.tile.empty()) {
        bus << "false";
    } else {
        bus << "true, bayer_tile = \"" << sensor.tile << "\"";
    }
    bus << (sensor.noise ? "" : ", noise = false")
        << " }\nproperties.SHUTTER.value = " << sensor.exposureMs
        << "\nproperties.GAIN.value = " << sensor.gainDb
        << "\ndelivery.paced = " << (sensor.paced ? "true" : "false") << "\n"
        << extra << "\n";
    return bus.str();
}

std::string busWithFault(const std::string& keys, bool paced)
{
    TestSensor sensor;
    sensor.paced = paced;
    if (paced) {
        sensor.frameRate = 30; // slow enough that no frame before the fault is missed
    }
    return busWith(sensor, "[[camera.fault]]\n" + keys);
}

GrabSession::~GrabSession()
{
    if (const Json last = summary(); last.is_object()) {
        expectLedger(last, frames());
    }
}

std::unique_ptr<Process> GrabSession::start()
{
    const std::string busFile = folder_.file("bus.toml");
    writeText(busFile, bus);
    std::vector<std::string> all = {
        kxhostPath(), "grab",      "--simulate=" + busFile,     "--output",
        outputFolder, "--summary", folder_.file("summary.json")};
    if (!configuration.empty()) {
        writeText(configurationFile(), configuration);
        all.insert(all.end(), {"-c", configurationFile()});
    }
    for (const std::string& setting : settings) {
        all.insert(all.end(), {"--set", setting});
    }
    if (quiet) {
        all.emplace_back("--quiet");
    }
    all.insert(all.end(), arguments.begin(), arguments.end());
    if (filesMayGrowTo > 0) {
        // A build that counts coverage would cut off its own files of counters.
        all.insert(all.begin(), {"/usr/bin/env", "GCOV_PREFIX=" + folder_.file("counters"),
                                 "/usr/bin/prlimit", "--fsize=" + std::to_string(filesMayGrowTo)});
    }
    all.insert(all.begin(), starter.begin(), starter.end());
    if (endsWithTest) {
        all.insert(all.begin(), {"/usr/bin/setpriv", "--pdeathsig=KILL"});
    }
    return std::make_unique<Process>(all, environment);
}

Finished GrabSession::run()
{
    const std::unique_ptr<Process> process = start();
    const int code = process->wait();
    return {code, process->standardOutput(), process->standardError()};
}

std::string GrabSession::output(const std::string& name) const
{
    return (folder_.path() / "out" / name).string();
}

std::vector<Json> GrabSession::frames() const
{
    std::vector<Json> frames;
    for (const std::string& line : readLines(output("frames.ndjson"))) {
        frames.push_back(Json::parse(line));
    }
    return frames;
}

Json GrabSession::summary() const
{
    return Json::parse(readText(folder_.file("summary.json")), nullptr, false);
}

std::vector<std::string> GrabSession::pictures() const
{
    std::vector<std::string> names;
    if (!std::filesystem::exists(output())) {
        return names; // a grab that wrote nothing leaves no folder
    }
    for (const auto& entry : std::filesystem::directory_iterator(output())) {
        const std::string name = entry.path().filename().string();
        if (name != "frames.ndjson") {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

void expectBalance(const GrabSession& session)
{
    const Json summary = session.summary();
    ASSERT_TRUE(summary.is_object());
    const auto number = [&](const char* section, const char* key) {
        return summary[section][key].get<std::uint64_t>();
    };
    EXPECT_EQ(number("exported", "frames"),
              number("exported", "written") + number("lost", "export"));
    EXPECT_EQ(session.frames().size(), number("exported", "written"));
    EXPECT_EQ(session.pictures().size(), number("exported", "pictures"));
}

} // namespace kxtest
