// Runs the grab loop, whole or bare, for a number of frames: the program to count instructions in.
#include "bare_loop.h"
#include "bench_host.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char** argv)
{
    if (argc != 3 || (std::strcmp(argv[1], "whole") != 0 && std::strcmp(argv[1], "bare") != 0)) {
        std::fprintf(stderr, "usage: plugin_loop whole|bare FRAMES\n");
        return 2;
    }
    kxbench::loadCamera(640, 480);
    kxbench::OpenCamera open;
    // Both kinds configure the camera, so that the frames are all that differs.
    kxbench::prepareHost(1, 2);
    if (kxbench::runWholeLoop(open) != 0) {
        return 1;
    }
    kxbench::prepareHost(1, static_cast<std::uint32_t>(std::strtoul(argv[2], nullptr, 10)));
    if (std::strcmp(argv[1], "bare") == 0) {
        kxbench::runBareLoop(open);
        return 0;
    }
    return kxbench::runWholeLoop(open) == 0 ? 0 : 1;
}
