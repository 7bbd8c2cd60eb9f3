// What cameras need of a computer, as far as a configuration tells.
#ifndef KXHOST_DOCTOR_NEEDS_H
#define KXHOST_DOCTOR_NEEDS_H

#include "config/config.h"
#include "doctor/doctor_check.h"

#include <cstdint>

namespace kxhost {

/// What is known beside the configuration.
struct DoctorHints {
    bool hasConfiguration = false; ///< else `Configuration` only holds what absent keys stand for
    bool usb = false;              ///< asked for, or a USB camera is plugged in
    bool gige = false;             ///< asked for
};

struct DoctorNeeds {
    Weight usb = Weight::kMaybe;
    Weight gige = Weight::kMaybe;
    Weight lines = Weight::kMaybe;  ///< lines of an I/O box are driven
    std::uint64_t usbfsMb = 0;      ///< memory of all USB transfers
    std::uint64_t receiveBytes = 0; ///< receive buffer of a socket
    std::uint64_t mtu = 0;          ///< bytes, of the camera's network interface
    std::uint64_t lockBytes = 0;    ///< memory that may be locked
};

/// USB memory and locked memory follow from frame size and number of buffers where the region is
/// configured; a size that the camera keeps is not known here, and the defaults stand for it.
DoctorNeeds needsOf(const Configuration& configuration, const DoctorHints& hints);

} // namespace kxhost

#endif
