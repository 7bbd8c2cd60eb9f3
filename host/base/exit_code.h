// What kxhost tells the shell.
#ifndef KXHOST_EXIT_CODE_H
#define KXHOST_EXIT_CODE_H

namespace kxhost {

/// Exit codes of the process; `kxhost --help` and the man page list them in the same words.
enum ExitCode : int {
    kExitFine = 0,          ///< fine
    kExitInternal = 1,      ///< a defect of kxhost itself
    kExitUsage = 2,         ///< the command line
    kExitConfiguration = 3, ///< the configuration
    kExitNoCamera = 4,      ///< no camera in time
    kExitCamera = 5,        ///< the camera or its library failed, or the camera was lost
    kExitExport = 6,        ///< frames, or what is reported, could not be written
    kExitLosses = 7,        ///< more losses than grab.max_losses
    kExitPlugin = 8,        ///< the plug-in cannot be loaded
    kExitNoLibrary = 9,     ///< the camera library cannot be loaded
    kExitLibraryAge = 10,   ///< the camera library is of another release than the plug-in
    kExitNoGrab = 11,       ///< ctl: no grab has that process id
    kExitMend = 12,         ///< doctor: something has to be mended
    kExitUnchecked = 13,    ///< doctor: something could not be found out, nothing else is amiss
    kExitNoClock = 14,      ///< clock: the frames do not tell the camera's clock
    kExitLive = 15,         ///< the address of the live page cannot be had
};

} // namespace kxhost

#endif
