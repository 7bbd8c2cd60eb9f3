// The command line of kxhost.
#include "command/command_line.h"

#include "base/notice.h"
#include "base/standard_output.h"
#include "command/command_help.h"
#include "command/command_mistake.h"
#include "config/config.h"
#include "live/live_address.h"
#include "live/steering_words.h"

#include <CLI/CLI.hpp>

#include <array>
#include <charconv>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>
#include <system_error>

namespace kxhost {
namespace {

constexpr const char* kAbout =
    "Grabs frames from a camera through the driver plug-in and writes them to disk.\n";

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

constexpr const char* kSecondsRemark = "; without a unit, seconds are meant";

/// Options that are another way to set a configuration key.
struct Shorthand {
    const char* option;
    const char* key;
    const char* placeholder;
    const char* meaning;
    std::string (*complete)(const std::string& typed) = asItIs;
    const char* remark = ""; ///< what else than the key takes the option does
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
    "--reconnect",
    "camera.reconnect",
    "SECONDS",
    "Wait so long for a camera that was lost: a time, no or forever (camera.reconnect)",
    inSeconds,
    kSecondsRemark};
constexpr Shorthand kWait = {"--wait",  "camera.wait",
                             "SECONDS", "Give up when no camera has come by then (camera.wait)",
                             inSeconds, kSecondsRemark};

/// Why the key of a shorthand does not take the value, as it was typed; empty = it does.
std::string whyNotTaken(const Shorthand& shorthand, const std::string& typed)
{
    const std::string path = shorthand.key;
    const std::size_t dot = path.find('.');
    const Key& key = *findKey(path.substr(0, dot), path.substr(dot + 1));
    const std::string problem = whyNoValue(key, shorthand.complete(typed));
    return problem.empty() ? "" : "\"" + typed + "\": " + problem + shorthand.remark;
}

class Parser {
public:
    CommandLineResult parse(int argc, const char* const* argv)
    {
        app_.formatter(std::make_shared<HelpFormatter>());
        app_.footer(generalFooter());
        app_.require_subcommand(1);
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
            complain(mistakeText(app_, mistake));
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
        app->group("Verbs");
        app->footer(footerOf(verb));
        app->callback([this, verb] { result_.verb = verb; });
        return app;
    }

    void addGrab()
    {
        CLI::App* app = addVerb("grab", Verb::kGrab, "Grab frames and write them to disk");
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
        addConfigurationSource(app);
        addLogOptions(app);
        addShorthand(app, kWait);
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
        addShorthand(app, kLogLevel);
        app->add_flag_callback(
            "-v,--verbose", [this] { shorthands_.insert(shorthands_.begin(), "log.level=info"); },
            "The same as --log-level info");
    }

    void addConfigurationOptions(CLI::App* app)
    {
        addConfigurationSource(app);
        for (const Shorthand& shorthand : kShorthands) {
            addShorthand(app, shorthand);
        }
        addLogOptions(app);
    }

    void addTimes(CLI::App* app)
    {
        addShorthand(app, kWait);
        addShorthand(app, kReconnect);
    }

    /// The table of shorthands outlives the parser.
    void addShorthand(CLI::App* app, const Shorthand& shorthand)
    {
        const auto take = [this, &shorthand](const std::string& typed) {
            shorthands_.push_back(std::string(shorthand.key) + "=" + shorthand.complete(typed));
        };
        const auto check = [&shorthand](const std::string& typed) {
            return whyNotTaken(shorthand, typed);
        };
        app->add_option_function<std::string>(shorthand.option, take, shorthand.meaning)
            ->type_name(shorthand.placeholder)
            ->check(CLI::Validator(check, ""));
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
