// Loads the camera library and the plug-in into this process.
#include "grab/plugin.h"

#include "grab/installation.h"

#include <atomic>
#include <cstdlib>
#include <exception>
#include <filesystem>

#include <dlfcn.h>

namespace kxhost {
namespace {

/// The name that the plug-in was linked against; what has it is taken for the camera library.
constexpr const char* kLibraryName = "libflycapture.so.2";
/// The simulation reads the description of its bus from the file that this variable names.
constexpr const char* kBusVariable = "FLYCAPTURE2_SIM_BUS";

std::string loaderText()
{
    const char* text = dlerror();
    return text != nullptr ? text : "unknown reason";
}

std::string chooseLibrary(const PluginChoice& choice)
{
    if (!choice.simulate) {
        return choice.cameraLibrary.empty() ? kLibraryName : choice.cameraLibrary;
    }
    std::string path = findSimulation();
    if (path.empty()) {
        throw LoadError(kExitNoLibrary, "The simulated cameras are not installed beside kxhost; "
                                        "--camera-library names their library.");
    }
    return path;
}

[[noreturn]] void failLibrary(const PluginChoice& choice, const std::string& path,
                              const std::string& why)
{
    if (choice.simulate || !choice.cameraLibrary.empty()) {
        throw LoadError(kExitNoLibrary,
                        "The camera library " + path + " cannot be loaded: " + why + ".");
    }
    throw LoadError(kExitNoLibrary,
                    "The camera maker's library libflycapture.so.2 is not installed: install the "
                    "FlyCapture2 SDK, name the library with --camera-library, or use simulated "
                    "cameras with --simulate.");
}

/// Without this check a grab would wait for cameras that nobody can describe. The simulation has
/// said by itself what is wrong.
void checkBus(void* simulation, const PluginChoice& choice)
{
    const auto isUsable = reinterpret_cast<int (*)()>(dlsym(simulation, "fcsimBusUsable"));
    if (isUsable != nullptr && isUsable() == 0) {
        throw LoadError(kExitConfiguration,
                        "The simulated bus cannot be used" +
                            (choice.bus.empty() ? "." : ": see to " + choice.bus + "."));
    }
}

/// Loads the camera library so that the plug-in finds it by its name; returns what it is called.
std::string loadLibrary(const PluginChoice& choice)
{
    std::string path = chooseLibrary(choice);
    if (!choice.bus.empty()) {
        setenv(kBusVariable, std::filesystem::absolute(choice.bus).c_str(), 1);
    }
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (library == nullptr) {
        failLibrary(choice, path, loaderText());
    }
    if (dlopen(kLibraryName, RTLD_NOW | RTLD_NOLOAD) != library) {
        failLibrary(choice, path, std::string("it does not carry the name ") + kLibraryName);
    }
    if (choice.simulate) {
        checkBus(library, choice);
    }
    return path;
}

template <typename T>
void find(void* plugin, const char* symbol, const std::string& path, T*& result)
{
    result = reinterpret_cast<T*>(dlsym(plugin, symbol));
    if (result == nullptr) {
        throw LoadError(kExitPlugin, path + " is no camera plug-in: it lacks " + symbol + ".");
    }
}

} // namespace

LoadError pluginLoadError(const std::string& plugin, const std::string& library,
                          const std::string& loaderText)
{
    constexpr std::string_view kMissing = "undefined symbol: ";
    const std::size_t at = loaderText.find(kMissing);
    const std::string symbol =
        at == std::string::npos ? "" : loaderText.substr(at + kMissing.size());
    if (symbol.find("11FlyCapture2") != std::string::npos) {
        return {kExitLibraryAge,
                "The camera library " + library +
                    " is of another release than the plug-in was built for (it lacks " + symbol +
                    "): build the plug-in for it with cmake -DFLYCAPTURE2_ROOT=<where its SDK is "
                    "installed>."};
    }
    return {kExitPlugin, "The plug-in " + plugin + " cannot be loaded: " + loaderText + "."};
}

Plugin::Plugin(const PluginChoice& choice)
{
    const std::string path = choice.plugin.empty() ? findPlugin() : choice.plugin;
    if (path.empty() || !std::filesystem::exists(path)) {
        throw LoadError(kExitPlugin, path.empty()
                                         ? "The plug-in libdriver-pointgrey.so is not installed "
                                           "beside kxhost; --plugin names it."
                                         : "The plug-in " + path + " does not exist.");
    }
    const std::string library = loadLibrary(choice);
    // A name without a slash would be searched for in the system's folders.
    void* plugin = dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (plugin == nullptr) {
        throw pluginLoadError(path, library, loaderText());
    }
    find(plugin, "KxLibGetVer", path, getVersion_);
    find(plugin, "KxLibProc", path, process_);
    find(plugin, "gKxLogLevelLib", path, logLevel_);
    find(plugin, "gKxLogModeLib", path, logSinks_);
    find(plugin, "gKxLogIdLib", path, logId_);
}

int Plugin::run() const
{
    try {
        return process_();
    } catch (const std::exception& error) {
        throw PluginThrew(error.what());
    } catch (...) {
        // A thread that is being ended unwinds without an exception and cannot be held up.
        if (!std::current_exception()) {
            throw;
        }
        throw PluginThrew(kForeignException);
    }
}

void Plugin::setLogging(std::uint32_t level, std::uint32_t sinks, std::uint32_t id) const
{
    const auto set = [](std::uint32_t& hostSwitch, std::uint32_t value) {
        std::atomic_ref<std::uint32_t>(hostSwitch).store(value, std::memory_order_relaxed);
    };
    set(*logId_, id);
    set(*logSinks_, sinks);
    set(*logLevel_, level);
}

} // namespace kxhost
