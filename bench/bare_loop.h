// The loop to compare the plug-in's with: the same SDK and host calls, and nothing else.
#ifndef KX_BENCH_BARE_LOOP_H
#define KX_BENCH_BARE_LOOP_H

#include "bench_camera.h"

namespace kxbench {

/// One run of the plug-in's grab loop with the frames that the host asks for. Returns its exit
/// code.
int runWholeLoop(OpenCamera& open);

/// As many frames from a camera that a whole loop has just configured.
void runBareLoop(OpenCamera& open);

} // namespace kxbench

#endif
