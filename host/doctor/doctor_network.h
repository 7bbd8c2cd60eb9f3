// What GigE cameras need of a computer: receive buffers of sockets and the packet size of its
// network interfaces.
#ifndef KXHOST_DOCTOR_NETWORK_H
#define KXHOST_DOCTOR_NETWORK_H

#include "doctor/doctor_check.h"
#include "doctor/doctor_needs.h"
#include "doctor/doctor_tree.h"

#include <optional>
#include <string>
#include <vector>

namespace kxhost {

/// A network interface that a camera can be plugged into: Ethernet hardware with a cable.
struct NetworkInterface {
    std::string name;
    bool up = false;
    FileNumber mtu;
};

/// The interfaces of hardware, without loopback, virtual and wireless ones; nothing = this computer
/// does not tell.
std::optional<std::vector<NetworkInterface>> readInterfaces(const Tree& tree);

/// One of the kernel's limits of receive buffers: `name` "rmem_max" or "rmem_default".
Check judgeReceiveBuffer(const std::string& name, const FileNumber& bytes,
                         const DoctorNeeds& needs);

/// One line for each interface that is up. Where one has large enough packets, the camera may be
/// there, and others are none of its business.
Checks judgeMtu(const std::optional<std::vector<NetworkInterface>>& interfaces,
                const DoctorNeeds& needs);

/// All of it.
Checks checkNetwork(const Tree& tree, const DoctorNeeds& needs);

} // namespace kxhost

#endif
