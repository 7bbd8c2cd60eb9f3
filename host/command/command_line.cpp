// The command line of kxhost.
#include "command/command_line.h"

#include "base/standard_output.h"
#include "config/config_keys.h"
#include "live/live_address.h"
#include "live/steering_words.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <sstream>
#include <system_error>

namespace kxhost {
namespace {

constexpr const char* kAbout =
    "Grabs frames from a camera through the driver plug-in and writes them to disk.\n";

constexpr const char* kFooter = R"(
Examples:
  kxhost grab --simulate --frames 10 --output pictures
      Ten frames of a simulated camera, as PNG files with their metadata.
  kxhost list
      The cameras on the buses of this computer.
  kxhost grab -c camera.toml --set output.format=tiff
      A configured grab, with another picture format, until Ctrl-C.
  kxhost grab -c camera.toml --frames 1000 --output pictures --report report.html
      The same with a page for the browser that tells how it went, frame by frame.
  kxhost grab -c camera.toml --live 8080
      The same, watched and steered at http://127.0.0.1:8080/ in a browser.
  kxhost check -c camera.toml
      What a configuration says, key by key, and its mistakes.
  kxhost doctor
      What this computer lacks for cameras, and the commands that mend it.
  kxhost clock -c camera.toml
      How fast the camera's clock runs, and what to write into the configuration for it.
  kxhost ctl 1234 reload
      Lets the grab with the process id 1234 read its configuration again.

A first Ctrl-C (or SIGTERM) finishes: every frame accepted so far is written. A second one ends at
once. SIGHUP reads the configuration again, SIGUSR1 computes a look-up table from the picture,
SIGUSR2 does so with 12 bits; "kxhost ctl" sends them. The keys of a configuration are in
docs/configuration.md.

Exit codes:
  0  fine                                6  frames or a report not written
  1  a defect of kxhost                  7  more losses than grab.max_losses
  2  usage                               8  the plug-in cannot be loaded
  3  configuration                       9  the camera library cannot be loaded
  4  no camera in time                  10  the camera library is of another release
  5  the camera failed or was lost          than the plug-in
                                        11  ctl: no grab has that process id
                                        12  doctor: something has to be mended
                                        13  doctor: something was not found out
                                        14  clock: the frames do not tell it
                                        15  the address of --live cannot be had
130 and 143 stand for a second Ctrl-C or SIGTERM, which does not wait for frames to be written.
)";

std::string whyNoPid(const std::string& text)
{
    int pid = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, pid);
    return error == std::errc{} && stop == end && pid > 0
               ? ""
               : "\"" + text + "\" is no process id, expected a whole number above 0";
}

std::string whyNoWord(const std::string& text)
{
    return findSteeringWord(text) != nullptr
               ? ""
               : "\"" + text + "\" is unknown, expected finish, reload, lut or lut12";
}

std::string whyNoLiveAddress(const std::string& text)
{
    return parseLiveAddress(text)
               ? ""
               : "\"" + text +
                     "\" is no address, expected PORT, HOST:PORT or [HOST]:PORT with a HOST in "
                     "numbers, or localhost";
}

constexpr const char* kClockFooter = R"(
Runs the camera as a grab would, writes no pictures, and compares the time that the camera gives each
frame with its arrival: how fast the camera's clock runs and how well that is known, where either
clock jumped, whether the camera's wanders, and the value of timestamps.clock_correction for time
stamps that follow it. A minute will do; the longer, the better. Ctrl-C ends it early, with a report
on what there is. Do not change the camera's exposure meanwhile. The report is explained in
docs/clock.md.

Examples:
  kxhost clock -c camera.toml
  kxhost clock -c camera.toml --seconds 600 --json --quiet > clock.json
  kxhost clock --simulate --seconds 5

Exit codes are those of a grab, and 14: too few frames, or the camera embeds no time stamps.
)";

constexpr const char* kCtlFooter = R"(
  finish   write every frame accepted so far and end (SIGTERM)
  reload   read the configuration again and take it over as a whole (SIGHUP)
  lut      compute a look-up table from the next picture and load it (SIGUSR1)
  lut12    the same from a picture of 12 bits, and back to 8 (SIGUSR2)

Exit codes: 0 the signal is sent, 2 usage, 11 no grab has that process id, or it belongs to somebody
else.
)";

constexpr const char* kDoctorFooter = R"(
Nothing is changed: a line that begins with "$" is a command for you to run. Verdicts:
  ok       as it should be
  warn     some cameras or some uses want more
  fail     has to be mended
  skip     does not apply to this computer or these cameras
  unknown  could not be found out

Examples:
  kxhost doctor
      Goes by the USB cameras that are plugged in.
  kxhost doctor -c camera.toml
      Goes by the frame size, the buffers and the packet size of a configuration.
  kxhost doctor --gige --json
      A computer for GigE cameras, told to a program.

Exit codes: 0 nothing has to be mended, 2 usage, 3 configuration, 6 this could not be printed, 12
something has to be mended, 13 something could not be found out, and nothing else is amiss.
)";

/// Options that are another way to set a configuration key.
struct Shorthand {
    const char* option;
    const char* key;
    const char* placeholder;
    const char* meaning;
};
constexpr std::array kShorthands = {
    Shorthand{"-n,--frames", "grab.frames", "N", "Export N frames, then finish (grab.frames)"},
    Shorthand{"-o,--output", "output.folder", "FOLDER",
              "Write pictures and metadata there (output.folder)"},
    Shorthand{"--max-losses", "grab.max_losses", "N",
              "Exit code 7 with more lost frames than N (grab.max_losses)"},
};
constexpr Shorthand kLogLevel = {"--log-level", "log.level", "LEVEL",
                                 "off, error, warning, info, debug or trace (log.level)"};
constexpr Shorthand kReconnect = {
    "--reconnect", "camera.reconnect", "SECONDS",
    "Wait so long for a camera that was lost: a time, no or forever (camera.reconnect)"};
constexpr Shorthand kWait = {"--wait", "camera.wait", "SECONDS",
                             "Give up when no camera has come by then (camera.wait)"};

std::string asItIs(const std::string& text)
{
    return text;
}

/// A bare number of seconds gets its unit.
std::string inSeconds(const std::string& text)
{
    const bool bare = text.find_first_not_of("0123456789.") == std::string::npos;
    return bare ? text + " s" : text;
}

/// Why a key of the section camera does not take this time, as it was typed; empty = it does.
std::string whyNoTime(const char* key, const std::string& text)
{
    const auto& rule = std::get<NumberRule>(findKey("camera", key)->rule);
    const std::optional<double> seconds = parseQuantity(inSeconds(text), rule.dimension);
    std::string words;
    for (const Word& word : rule.words) {
        if (word.name == text) {
            return "";
        }
        words += ", or " + std::string(word.name);
    }
    return seconds && *seconds >= rule.min && *seconds <= rule.max
               ? ""
               : "\"" + text + "\": expected seconds, or a time with its unit, of " +
                     formatQuantity(rule.min, rule.dimension) + " or more" + words;
}

CLI::Validator takesTime(const char* key)
{
    return {[key](const std::string& text) { return whyNoTime(key, text); }, ""};
}

class Parser {
public:
    CommandLineResult parse(int argc, const char* const* argv)
    {
        app_.footer(kFooter);
        app_.require_subcommand(1);
        app_.get_formatter()->column_width(28);
        addGrab();
        addList();
        addCheck();
        addVersion();
        addClock();
        addCtl();
        addDoctor();
        app_.add_flag_callback(
            "--version", [] { throw CLI::CallForVersion(); }, "The same as the verb version");
        try {
            app_.parse(argc, argv);
        } catch (const CLI::CallForVersion&) {
            result_.verb = Verb::kVersion;
        } catch (const CLI::Success& success) {
            std::ostringstream help;
            const int exitCode = app_.exit(success, help, std::cerr);
            return {std::nullopt, printReport(help.str(), exitCode)};
        } catch (const CLI::ParseError& mistake) {
            app_.exit(mistake);
            return {std::nullopt, kExitUsage};
        }
        const char* const library = std::getenv("KXHOST_CAMERA_LIBRARY");
        if (library != nullptr && !result_.plugin.simulate &&
            result_.plugin.cameraLibrary.empty()) {
            result_.plugin.cameraLibrary = library;
        }
        result_.overrides.insert(result_.overrides.end(), shorthands_.begin(), shorthands_.end());
        return {result_, 0};
    }

private:
    CLI::App* addVerb(const char* name, Verb verb, const char* meaning)
    {
        CLI::App* app = app_.add_subcommand(name, meaning);
        app->callback([this, verb] { result_.verb = verb; });
        return app;
    }

    void addGrab()
    {
        CLI::App* app = addVerb("grab", Verb::kGrab, "Grab frames and write them to disk");
        app->footer(kFooter);
        addConfigurationOptions(app);
        addTimes(app);
        addPluginOptions(app);
        app->add_option("--summary", result_.summaryFile, "Write the summary there as JSON")
            ->type_name("FILE");
        app->add_option("--report", result_.reportFile,
                        "Write a page for browsers there, at the end: how it went, pictures, "
                        "histograms, times, losses, configuration")
            ->type_name("FILE.html");
        addLive(app);
        app->add_flag("-q,--quiet", result_.quiet, "Neither progress nor summary");
    }

    void addLive(CLI::App* app)
    {
        CLI::Option* live =
            app->add_option("--live", result_.live.address,
                            "Serve a page with the live picture, losses and buttons there: on "
                            "127.0.0.1 unless HOST says otherwise, and then only with a token; "
                            "port 0 = any that is free")
                ->type_name("[HOST:]PORT")
                ->check(CLI::Validator(whyNoLiveAddress, ""));
        app->add_option("--live-token-file", result_.live.tokenFile,
                        "The token for the page is the first line of this file; by default that "
                        "of the environment variable KXHOST_LIVE_TOKEN")
            ->type_name("FILE")
            ->needs(live);
    }

    void addList()
    {
        CLI::App* app = addVerb("list", Verb::kList, "List the cameras on the buses");
        addPluginOptions(app);
    }

    void addCheck()
    {
        CLI::App* app =
            addVerb("check", Verb::kCheck, "Check a configuration and print what is in force");
        addConfigurationOptions(app);
        addTimes(app);
    }

    void addVersion()
    {
        CLI::App* app = addVerb("version", Verb::kVersion, "Print the versions");
        addPluginOptions(app);
    }

    void addClock()
    {
        constexpr int kDay = 86400;
        CLI::App* app = addVerb("clock", Verb::kClock, "Measure the camera's clock");
        app->footer(kClockFooter);
        addConfigurationSource(app);
        addLogOptions(app);
        addShorthand(app, kWait, inSeconds)->check(takesTime("wait"));
        addPluginOptions(app);
        app->add_option("--seconds", result_.clock.seconds, "How long to look at the camera")
            ->type_name("N")
            ->check(CLI::Range(1, kDay))
            ->capture_default_str();
        app->add_flag("--json", result_.clock.json, "Report as JSON");
        app->add_flag("-q,--quiet", result_.quiet, "No progress");
    }

    void addCtl()
    {
        CLI::App* app = addVerb("ctl", Verb::kCtl, "Steer a grab that runs");
        app->footer(kCtlFooter);
        app->add_option("PID", result_.pid, "Process id of the grab")
            ->required()
            ->type_name("")
            ->check(CLI::Validator(whyNoPid, ""));
        const auto take = [this](const std::string& word) {
            result_.signal = findSteeringWord(word)->signal;
        };
        app->add_option_function<std::string>("WORD", take, "What it shall do, see below")
            ->required()
            ->type_name("")
            ->check(CLI::Validator(whyNoWord, ""));
    }

    void addDoctor()
    {
        CLI::App* app = addVerb("doctor", Verb::kDoctor,
                                "What this computer lacks for cameras, and what mends it");
        app->footer(kDoctorFooter);
        addConfigurationSource(app);
        addPluginOptions(app);
        app->add_flag("--usb", result_.doctor.usb,
                      "USB cameras are meant, though none is plugged in");
        app->add_flag("--gige", result_.doctor.gige, "GigE cameras are meant");
        app->add_flag("--json", result_.doctor.json, "One JSON object instead of a table");
        app->add_option("--root", result_.doctor.root,
                        "Look at /sys, /proc, /etc and /dev below this folder, as in an image of "
                        "another computer")
            ->type_name("FOLDER")
            ->check(CLI::Validator(CLI::ExistingDirectory).description(""));
    }

    void addConfigurationSource(CLI::App* app)
    {
        app->add_option("-c,--config", result_.configuration, "Configuration file (TOML)")
            ->type_name("FILE");
        app->add_option("-s,--set", result_.overrides,
                        "Set one key, over the configuration file; may be repeated")
            ->type_name("SECTION.KEY=VALUE")
            ->expected(1)
            ->take_all();
    }

    void addLogOptions(CLI::App* app)
    {
        addShorthand(app, kLogLevel, asItIs);
        app->add_flag_callback(
            "-v,--verbose", [this] { shorthands_.insert(shorthands_.begin(), "log.level=info"); },
            "The same as --log-level info");
    }

    void addConfigurationOptions(CLI::App* app)
    {
        addConfigurationSource(app);
        for (const Shorthand& shorthand : kShorthands) {
            addShorthand(app, shorthand, asItIs);
        }
        addLogOptions(app);
    }

    void addTimes(CLI::App* app)
    {
        addShorthand(app, kWait, inSeconds)->check(takesTime("wait"));
        addShorthand(app, kReconnect, inSeconds)->check(takesTime("reconnect"));
    }

    CLI::Option* addShorthand(CLI::App* app, const Shorthand& shorthand,
                              const std::function<std::string(const std::string&)>& value)
    {
        return app
            ->add_option_function<std::string>(
                shorthand.option,
                [this, key = std::string(shorthand.key), value](const std::string& text) {
                    shorthands_.push_back(key + "=" + value(text));
                },
                shorthand.meaning)
            ->type_name(shorthand.placeholder);
    }

    void addPluginOptions(CLI::App* app)
    {
        CLI::Option* simulate =
            app->add_option_function<std::vector<std::string>>(
                   "--simulate",
                   [this](const std::vector<std::string>& bus) {
                       result_.plugin.simulate = true;
                       result_.plugin.bus = bus.front();
                   },
                   "Use simulated cameras: those of a bus description, or the built-in ones")
                ->type_name("[=BUS.toml]")
                ->expected(0, 1);
        app->add_option("--camera-library", result_.plugin.cameraLibrary,
                        "The camera maker's libflycapture.so.2; by default the one that the "
                        "environment variable KXHOST_CAMERA_LIBRARY names, or the installed one")
            ->type_name("FILE")
            ->excludes(simulate);
        app->add_option("--plugin", result_.plugin.plugin,
                        "The driver plug-in; by default the one installed with kxhost")
            ->type_name("FILE");
    }

    CLI::App app_{kAbout, "kxhost"};
    CommandLine result_;
    std::vector<std::string> shorthands_;
};

} // namespace

CommandLineResult parseCommandLine(int argc, const char* const* argv)
{
    return Parser().parse(argc, argv);
}

} // namespace kxhost
