// Where the pieces of an installation, or of a build tree, lie: found from where kxhost itself is.
#ifndef KXHOST_INSTALLATION_H
#define KXHOST_INSTALLATION_H

#include <string>

namespace kxhost {

/// Path of the plug-in; empty = not found.
std::string findPlugin();
/// Path of the simulated cameras' library; empty = not found.
std::string findSimulation();

/// The first of the places where a piece may lie, as seen from `programFolder`, that exists: in a
/// build tree `inBuildTree` below it, in an installation `inLibraryFolder` below the library
/// folder. Empty = none of them does, or `programFolder` is empty, which stands for unknown.
std::string findPiece(const std::string& programFolder, const std::string& inBuildTree,
                      const std::string& inLibraryFolder);

} // namespace kxhost

#endif
