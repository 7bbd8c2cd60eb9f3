// One grab of kxhost with the simulated cameras, as a process, and what it left on disk.
#ifndef KX_TEST_GRAB_SESSION_H
#define KX_TEST_GRAB_SESSION_H

#include "process.h"
#include "temporary_folder.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace kxtest {

/// The program under test.
std::string kxhostPath();

/// Model and serial number of the camera.
inline constexpr const char* kModel = "Tester TST-1";
inline constexpr unsigned kSerial = 424242;

/// A simulated camera with its sensor, small and fast enough for tests.
struct TestSensor {
    unsigned width = 64;
    unsigned height = 48;
    std::string tile;       ///< "RGGB" or so; empty = monochrome
    double frameRate = 200; ///< frames a second
    bool paced = false;     ///< frames come in time; otherwise each as soon as it is fetched
    bool noise = true;
    double exposureMs = 1; ///< at power-up
    double gainDb = 3;
};

/// TOML of a bus with one camera. `extra` holds further keys and tables of the camera.
std::string busWith(const TestSensor& sensor, const std::string& extra = "");
/// The same with one scheduled fault, given by its keys.
std::string busWithFault(const std::string& keys, bool paced = false);

class GrabSession {
    TemporaryFolder folder_;

public:
    /// The bus that the grab sees; by default one monochrome camera.
    std::string bus = busWith(TestSensor());
    /// Content of the configuration file; empty = there is none.
    std::string configuration;
    /// Keys set over those of the file, "section.key=value".
    std::vector<std::string> settings = {"grab.frames=5"};
    /// kxhost does not outlive a test that is killed: an endless grab would fill the disk.
    bool endsWithTest = false;
    /// NAME=value pairs added to the environment.
    std::vector<std::string> environment;
    /// Neither progress nor summary.
    bool quiet = true;
    /// A program and its arguments that start kxhost: with a limit, a priority, ...
    std::vector<std::string> starter;
    /// Further arguments.
    std::vector<std::string> arguments;
    /// Where the frames go; by default into the session's own folder.
    std::string outputFolder = output();
    /// No file that kxhost writes may grow beyond this, as on a full disk; 0 = no limit.
    std::size_t filesMayGrowTo = 0;

    GrabSession() = default;
    /// Checks the ledger of the last run that left a summary, so that every test does.
    ~GrabSession();
    GrabSession(const GrabSession&) = delete;
    GrabSession& operator=(const GrabSession&) = delete;

    void set(const std::string& setting) { settings.push_back(setting); }

    /// Path of the configuration file, which changes when a running grab is to see a change.
    std::string configurationFile() const { return folder_.file("camera.toml"); }

    /// Starts kxhost; the session must outlive the process.
    std::unique_ptr<Process> start();
    /// Runs it to its end.
    Finished run();

    std::string output(const std::string& name = "") const;
    /// The metadata, one object for each exported frame.
    std::vector<nlohmann::json> frames() const;
    nlohmann::json summary() const;
    /// Names of the pictures in the output folder, sorted.
    std::vector<std::string> pictures() const;
    const TemporaryFolder& folder() const { return folder_; }
};

/// Checks that the numbers of a summary balance and that the files on disk are those it counts.
void expectBalance(const GrabSession& session);

} // namespace kxtest

#endif
