// The camera library that a grab would load: found out by loading it, in a process of its own.
#ifndef KXHOST_DOCTOR_LIBRARY_H
#define KXHOST_DOCTOR_LIBRARY_H

#include "doctor/doctor_check.h"
#include "doctor/doctor_tree.h"
#include "grab/plugin.h"

#include <string>
#include <vector>

namespace kxhost {

struct LibraryFacts {
    enum class Outcome {
        kLoaded,
        kRefused, ///< by the loader, or by kxhost
        kCrashed, ///< the process ended before it could tell
        kHung,    ///< it did not come back
    };
    Outcome outcome = Outcome::kCrashed;
    ExitCode exitCode = kExitFine; ///< that a grab would end with, when refused
    std::string reason;            ///< when refused, one sentence
    std::string path;              ///< of the library that was loaded, links followed
    bool simulated = false;        ///< it is the simulated cameras
    bool searched = false;         ///< for one that is installed, as none was named
    /// A folder where such a library lies without being found there; empty = none is known.
    std::string unseenFolder;
};

/// Loads library and plug-in as a grab does, in a child process that ends with it: it may start
/// threads, take its time, or crash. REQUIRES: no other threads in this process.
LibraryFacts readLibrary(const PluginChoice& choice, const Tree& tree);

/// The release that the name of a library's file tells ("2.13.3.31"); empty = it tells none.
std::string releaseOf(const std::string& path);

Check judgeLibrary(const LibraryFacts& facts);

} // namespace kxhost

#endif
