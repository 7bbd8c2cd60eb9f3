// Camera discovery: what is on the buses, and which of it the configuration means.
#ifndef KX_PG_MAIN_DISCOVERY_H
#define KX_PG_MAIN_DISCOVERY_H

#include "kx_pg_excam.h"
#include "kx_pg_proc.h"

#include <FlyCapture2.h>

#include <array>
#include <cstdint>
#include <memory>

namespace KxPGrey {

/// Cameras at higher bus indices are never looked at.
inline constexpr unsigned int kMaxCameras = 8;

/// Which camera the host's configuration asks for. Read once per run.
struct Wanted {
    const char* model = nullptr;  ///< beginning of the model name; null = none configured
    const char* serial = nullptr; ///< serial number as text; null or empty = any
    std::uint32_t activeMask = 0; ///< bus indices that may be used in any case
};

/// The cameras of one run by bus index.
struct Inventory {
    std::array<std::unique_ptr<CExCam>, kMaxCameras> cameras;
    std::array<KxPGreyIfaces, kMaxCameras> ifaces;
};

/// The camera that was chosen; it is connected.
struct Chosen {
    std::unique_ptr<CExCam> camera; ///< null = none
    KxPGreyIfaces iface = kKxPGreyOther;
    FlyCapture2::PGRGuid guid;
    FlyCapture2::CameraInfo info;
};

/// Makes a camera object for each of the first `count` cameras and prints what the bus tells.
void takeInventory(FlyCapture2::BusManager& bus, unsigned int count, Inventory& inventory);

/// Connects the cameras in bus order until one is the wanted one; those that are not are released.
Chosen chooseCamera(FlyCapture2::BusManager& bus, unsigned int count, const Wanted& wanted,
                    Inventory& inventory);

} // namespace KxPGrey

#endif
