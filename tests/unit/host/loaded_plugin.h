// The plug-in over the simulated cameras, loaded as kxhost does it, and its log switches.
#ifndef KX_TEST_LOADED_PLUGIN_H
#define KX_TEST_LOADED_PLUGIN_H

#include "grab/plugin.h"
#include "temporary_folder.h"

#include <cstdint>
#include <string>

#include <dlfcn.h>

namespace kxtest {

/// The bus of the first one in a process counts: it is read when the cameras are loaded.
class LoadedPlugin {
public:
    /// `bus` describes the cameras, in TOML.
    explicit LoadedPlugin(const std::string& bus)
        : plugin_(
              {KX_TEST_PLUGIN, KX_TEST_SIMULATION, false, written(folder_.file("bus.toml"), bus)})
    {}

    const kxhost::Plugin& operator*() const { return plugin_; }

    /// The value of one of the plug-in's switches, by its name.
    static std::uint32_t logSwitch(const char* name)
    {
        void* const loaded = dlopen(KX_TEST_PLUGIN, RTLD_NOW | RTLD_NOLOAD);
        const auto* const value = static_cast<const std::uint32_t*>(dlsym(loaded, name));
        dlclose(loaded);
        return *value;
    }

private:
    static std::string written(const std::string& path, const std::string& text)
    {
        writeText(path, text);
        return path;
    }

    TemporaryFolder folder_;
    kxhost::Plugin plugin_;
};

} // namespace kxtest

#endif
