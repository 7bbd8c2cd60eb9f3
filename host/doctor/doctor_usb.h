// What USB cameras need of a computer: memory for transfers, and that nobody else holds the camera.
#ifndef KXHOST_DOCTOR_USB_H
#define KXHOST_DOCTOR_USB_H

#include "doctor/doctor_check.h"
#include "doctor/doctor_needs.h"
#include "doctor/doctor_tree.h"

#include <string>
#include <vector>

namespace kxhost {

/// The maker's vendor id, as the kernel writes it.
constexpr const char* kCameraVendor = "1e10";

/// A process that has a camera open.
struct Holder {
    int pid = 0;
    std::string command; ///< empty = not told
};

/// A USB camera of the maker.
struct UsbCamera {
    std::string place;    ///< on the bus, "2-1.4"
    std::string product;  ///< as it calls itself; may be empty
    std::string node;     ///< "/dev/bus/usb/002/005"; empty = its numbers cannot be read
    bool usable = false;  ///< this process may open the node for reading and writing
    bool claimed = false; ///< some process uses it
    std::vector<Holder> holders;
};

struct UsbFacts {
    FileNumber memoryMb;
    bool toldBus = false; ///< the bus can be looked at
    std::vector<UsbCamera> cameras;
    bool sawAll = true; ///< the open files of every process could be looked at
};

UsbFacts readUsb(const Tree& tree);

Check judgeUsbMemory(const FileNumber& megabytes, const DoctorNeeds& needs);
/// One line for each camera, or one that there is none.
Checks judgeCameras(const UsbFacts& facts);

} // namespace kxhost

#endif
