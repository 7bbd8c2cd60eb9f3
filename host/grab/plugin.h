// Loads the camera library and the plug-in into this process.
#ifndef KXHOST_PLUGIN_H
#define KXHOST_PLUGIN_H

#include "base/exit_code.h"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace kxhost {

/// Why something could not be loaded, as one sentence, and the exit code that says so.
class LoadError : public std::runtime_error {
public:
    LoadError(ExitCode exitCode, const std::string& sentence)
        : std::runtime_error(sentence), exitCode_(exitCode)
    {}
    ExitCode exitCode() const { return exitCode_; }

private:
    ExitCode exitCode_;
};

/// What to load.
struct PluginChoice {
    std::string plugin;        ///< path; empty = beside this program
    std::string cameraLibrary; ///< path; empty = the system's, or the simulation
    bool simulate = false;     ///< the simulated cameras
    std::string bus;           ///< file that describes them; empty = the built-in default
};

/// What comes out of a pass that throws something other than std::exception.
inline constexpr const char* kForeignException = "an exception of an unknown kind";

/// The camera library or the plug-in has thrown out of a pass; one sentence.
class PluginThrew : public std::runtime_error {
public:
    explicit PluginThrew(const std::string& thrown)
        : std::runtime_error("The camera library or the driver threw: " + thrown + "."),
          thrown_(thrown)
    {}
    /// The text of the exception.
    const std::string& thrown() const { return thrown_; }

private:
    std::string thrown_;
};

/// The loaded plug-in. It is never unloaded: its camera library keeps threads and exit handlers.
class Plugin {
public:
    /// Loads the camera library and then the plug-in, both with immediate binding. Throws
    /// LoadError.
    explicit Plugin(const PluginChoice& choice);

    /// The plug-in's version text.
    const char* version() const { return getVersion_(); }
    /// One pass; blocks until it ends. Only one at a time. Throws PluginThrew for whatever comes
    /// out of it.
    int run() const;
    /// Sets what the plug-in logs; any thread, at any time.
    void setLogging(std::uint32_t level, std::uint32_t sinks, std::uint32_t id) const;

private:
    const char* (*getVersion_)() = nullptr;
    int (*process_)() = nullptr;
    std::uint32_t* logLevel_ = nullptr;
    std::uint32_t* logSinks_ = nullptr;
    std::uint32_t* logId_ = nullptr;
};

/// Turns what the loader said about the plug-in into a LoadError; `library` is the camera library.
LoadError pluginLoadError(const std::string& plugin, const std::string& library,
                          const std::string& loaderText);

} // namespace kxhost

#endif
