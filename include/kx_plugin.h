// The entry points of the plug-in, as the process that loads it finds them.
#ifndef KX_PLUGIN_H
#define KX_PLUGIN_H

#include "kx_export.h"

extern "C" {

/// The version: three numbers with dots, a hyphen, and the 40 hexadecimal digits of the source
/// revision. The text belongs to the plug-in. Any thread.
KX_API const char* KxLibGetVer();

/// One whole run: finds the configured camera, grabs until something ends it, and releases
/// everything. Blocks for as long as the grab lasts; the calling thread is the grab thread. Only
/// one run may be under way in a process. Returns 0 = ended as asked; 2 = no camera, 3 = the
/// configured camera is not there (call again later for both); negative = the camera failed; 1 = a
/// new configuration was refused. What the camera library or a host service throws is passed on,
/// with everything released: exceptions of any type outside of the grab loop (finding the camera,
/// power-up, stream, configuration, end), in the loop those that are not derived from
/// std::exception; the others end the loop, which is a negative result.
KX_API int KxLibProc();

/// Where the file starts when it is run as a program: prints "Version: ..." and ends the process.
[[noreturn]] KX_API void LibEntry();
}

#endif
