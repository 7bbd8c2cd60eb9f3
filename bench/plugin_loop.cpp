// Runs the grab loop, whole, bare, or beside a control thread, for a number of frames: the program
// to count instructions in.
#include "bare_loop.h"
#include "bench_host.h"
#include "kx_pg_cthr.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

int main(int argc, char** argv)
{
    const std::string_view kind = argc > 2 ? argv[1] : "";
    const bool isBeside = argc == 4 && std::string_view(argv[3]) == "beside";
    if ((kind != "whole" && kind != "bare") || (argc != 3 && !isBeside)) {
        std::fprintf(stderr, "usage: plugin_loop whole|bare FRAMES [beside]\n");
        return 2;
    }
    kxbench::loadCamera(640, 480);
    kxbench::OpenCamera open;
    // Both kinds configure the camera, so that the frames are all that differs.
    kxbench::prepareHost(1, 2);
    if (kxbench::runWholeLoop(open) != 0) {
        return 1;
    }
    std::optional<KxPGrey::CCamCtrlThread> control;
    if (isBeside) {
        control.emplace().CtrlThreadStart(&open.camera);
        if (!open.camera.ctrlThread) {
            std::fprintf(stderr, "plugin_loop: real-time threads are not allowed here\n");
            return 3;
        }
    }
    kxbench::prepareHost(1, static_cast<std::uint32_t>(std::strtoul(argv[2], nullptr, 10)));
    if (kind == "bare") {
        kxbench::runBareLoop(open);
        return 0;
    }
    return kxbench::runWholeLoop(open) == 0 ? 0 : 1;
}
