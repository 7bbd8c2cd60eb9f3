// The camera of the benchmarks: a simulated one that delivers at once and draws nothing.
#ifndef KX_BENCH_CAMERA_H
#define KX_BENCH_CAMERA_H

#include "kx_pg_excam.h"

#include <FlyCapture2.h>

#include <memory>
#include <string>

namespace kxbench {

/// Puts one 8-bit USB 3 camera of this size on the bus; `sensor` holds further keys of its sensor.
/// Ends the program if that fails.
void loadCamera(unsigned width, unsigned height, const std::string& sensor = "");

/// The connected camera with its description. Ends the program if there is none.
struct OpenCamera {
    OpenCamera();
    ~OpenCamera();
    OpenCamera(const OpenCamera&) = delete;
    OpenCamera& operator=(const OpenCamera&) = delete;

    FlyCapture2::PGRGuid guid;
    FlyCapture2::CameraInfo info;
    KxPGrey::CExCam camera;
};

} // namespace kxbench

#endif
