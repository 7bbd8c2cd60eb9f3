// A small host: loads the plug-in, grabs ten frames and writes each as a picture (PGM).
//
//     example_host PLUGIN CAMERA_LIBRARY FOLDER
//
// A host exports the functions of kx_host.h, and the plug-in calls them. Those of this file say
// what makes this host different; host_defaults.cpp has all the others.
#include <array>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

#include <dlfcn.h>
#include <kx_host.h>
#include <kx_log.h>
#include <kx_plugin.h>
#include <kx_scenario.h>

namespace {

constexpr unsigned kFramesWanted = 10;
constexpr int kFinish = 1; // signal code for "end the grab"
constexpr int kAccepted = 0;
constexpr int kRefused = 1;

/// What this host remembers of its grab. The plug-in calls on the thread that called it, so nothing
/// here needs a lock.
struct Grab {
    std::string folder;
    std::array<const void*, 16> published{}; ///< where the plug-in keeps each scenario parameter
    unsigned written = 0;
    bool failed = false;
};
Grab grab;

std::uint32_t publishedNumber(KxScParam id)
{
    const void* value = grab.published.at(static_cast<std::size_t>(id));
    return value == nullptr ? 0 : *static_cast<const std::uint32_t*>(value);
}

bool writePicture(const void* pixels, std::uint64_t timestampUs)
{
    const std::uint32_t width = publishedNumber(kKxScWidth);
    const std::uint32_t height = publishedNumber(kKxScHeight);
    const std::string name = grab.folder + "/frame_" + std::to_string(grab.written) + ".pgm";
    std::ofstream file(name, std::ios::binary);
    file << "P5\n# exposed at " << timestampUs << " us\n" << width << ' ' << height << "\n255\n";
    file.write(static_cast<const char*>(pixels), std::streamsize{width} * height);
    file.close();
    return !file.fail();
}

} // namespace

// ---- The services in which this host differs from kx_host_defaults.h.

extern "C" {

/// The first frame only starts the timing and is not handed over.
uint32_t KxGiMainCtx__GetFnum()
{
    return kFramesWanted + 1;
}

/// The pointers stay valid while the plug-in runs; what they lead to changes with each frame.
void KxSc__SetParamVal(int id, const void* value)
{
    grab.published.at(static_cast<std::size_t>(id)) = value;
}

/// A frame: 8-bit pixels without gaps between the lines, ours until we return. A host with more to
/// do than this copies them and works on another thread, for the camera does not wait.
int KxGiMemInst__Trigger(int /*instance*/, int /*zero*/, uint64_t timestampUs, void* frame,
                         int /*store*/)
{
    if (!writePicture(frame, timestampUs)) {
        grab.failed = true;
        return kRefused;
    }
    ++grab.written;
    return kAccepted;
}

/// Asked once per frame: a grab whose pictures cannot be written has no use.
int KxUtl__CheckSignal()
{
    return grab.failed ? kFinish : 0;
}
}

// ---- The program.

namespace {

void* load(const char* path, int visibility)
{
    void* library = dlopen(path, RTLD_NOW | visibility);
    if (library == nullptr) {
        throw std::runtime_error(dlerror());
    }
    return library;
}

/// A function or variable of the plug-in, by its name.
template <typename T>
T* find(void* plugin, const char* name)
{
    void* symbol = dlsym(plugin, name);
    if (symbol == nullptr) {
        throw std::runtime_error(dlerror());
    }
    return reinterpret_cast<T*>(symbol);
}

void run(const char* pluginPath, const char* cameraLibrary)
{
    // First of all, so that the plug-in finds this one under the name libflycapture.so.2.
    load(cameraLibrary, RTLD_GLOBAL);
    void* plugin = load(pluginPath, RTLD_LOCAL);
    *find<decltype(gKxLogLevelLib)>(plugin, "gKxLogLevelLib") = 2; // errors and warnings
    *find<decltype(gKxLogModeLib)>(plugin, "gKxLogModeLib") = kxlog::kToStdout;
    std::printf("plug-in %s\n", find<decltype(KxLibGetVer)>(plugin, "KxLibGetVer")());

    const int code = find<decltype(KxLibProc)>(plugin, "KxLibProc")();
    if (grab.failed) {
        throw std::runtime_error("cannot write pictures into " + grab.folder);
    }
    if (code != 0) {
        throw std::runtime_error("the grab ended with code " + std::to_string(code));
    }
    std::printf("%u pictures in %s\n", grab.written, grab.folder.c_str());
}

} // namespace

int main(int argc, char** argv)
try {
    if (argc != 4) {
        throw std::runtime_error("usage: example_host PLUGIN CAMERA_LIBRARY FOLDER");
    }
    grab.folder = argv[3];
    run(argv[1], argv[2]);
} catch (const std::exception& failure) {
    std::fprintf(stderr, "example_host: %s\n", failure.what());
    return 1;
}
