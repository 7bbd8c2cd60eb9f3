// Which cameras there are, and what happens on their buses.
#ifndef KX_FLYCAPTURE2_BUS_MANAGER_H
#define KX_FLYCAPTURE2_BUS_MANAGER_H

#include "Error.h"
#include "FlyCapture2Defs.h"

namespace FlyCapture2 {

class TopologyNode;

/// Enumerates the cameras of all buses. Any number of objects may exist; each belongs to one thread
/// at a time. Calls may block for as long as a bus scan takes.
///
/// Unless it says otherwise a function answers PGRERROR_INVALID_PARAMETER for a null output and
/// PGRERROR_NOT_FOUND for a camera that is not there.
class FC2_API BusManager {
public:
    BusManager();
    BusManager(const BusManager&) = delete;
    BusManager& operator=(const BusManager&) = delete;
    virtual ~BusManager();

    /// Resets the bus that the camera `guid` is on; its other cameras feel it too.
    virtual Error FireBusReset(PGRGuid* guid);
    /// Counts the cameras that can be connected to.
    virtual Error GetNumOfCameras(unsigned int* count);
    /// Finds a network camera by its address.
    virtual Error GetCameraFromIPAddress(IPAddress address, PGRGuid* guid);
    /// Finds a camera by its place in the list, from 0; the order holds until a bus changes.
    virtual Error GetCameraFromIndex(unsigned int index, PGRGuid* guid);
    /// Finds a camera by its serial number.
    virtual Error GetCameraFromSerialNumber(unsigned int serialNumber, PGRGuid* guid);
    /// Reads a serial number by the camera's place in the list, from 0, without connecting.
    virtual Error GetCameraSerialNumberFromIndex(unsigned int index, unsigned int* serialNumber);
    /// Says on which kind of bus a camera is: whether Camera or GigECamera is its class.
    virtual Error GetInterfaceTypeFromGuid(PGRGuid* guid, InterfaceType* interfaceType);
    /// Counts cameras, hubs and host adapters together.
    virtual Error GetNumOfDevices(unsigned int* count);
    /// Finds a camera, hub or host adapter by its place in that list, from 0.
    virtual Error GetDeviceFromIndex(unsigned int index, PGRGuid* guid);
    /// Reads a register of the bus's physical layer.
    virtual Error ReadPhyRegister(PGRGuid guid, unsigned int page, unsigned int port,
                                  unsigned int address, unsigned int* value);
    /// Writes a register of the bus's physical layer.
    virtual Error WritePhyRegister(PGRGuid guid, unsigned int page, unsigned int port,
                                   unsigned int address, unsigned int value);
    /// Reads the link register of a USB port.
    virtual Error GetUsbLinkInfo(PGRGuid guid, unsigned int* value);
    /// Reads the status register of a USB port.
    virtual Error GetUsbPortStatus(PGRGuid guid, unsigned int* value);
    /// Fills in the tree of host adapters, hubs and cameras.
    virtual Error GetTopology(TopologyNode* root);
    /// Has `callback` called, from a thread of the library, for each event of `type`.
    /// `userData` stays with the caller; `handle` is what unregisters.
    virtual Error RegisterCallback(BusEventCallback callback, BusCallbackType type, void* userData,
                                   CallbackHandle* handle);
    /// Ends a registration; the callback is not running any more when this returns.
    virtual Error UnregisterCallback(CallbackHandle handle);
    /// Looks for cameras that came or went without the system saying so.
    virtual Error RescanBus();

    /// Gives a network camera an address until its next power-up; works across subnets.
    static Error ForceIPAddressToCamera(MACAddress macAddress, IPAddress ipAddress,
                                        IPAddress subnetMask, IPAddress defaultGateway);
    /// Gives every network camera an address that its host interface can reach.
    static Error ForceAllIPAddressesAutomatically();
    /// The same for the camera with this serial number alone.
    static Error ForceAllIPAddressesAutomatically(unsigned int serialNumber);
    /// Lists network cameras, those of other subnets too. `count` is the room in `cameras` before
    /// and the number found after; PGRERROR_BUFFER_TOO_SMALL when there was not enough room.
    static Error DiscoverGigECameras(CameraInfo* cameras, unsigned int* count);
    /// Says whether no other program holds control over the camera.
    Error IsCameraControlable(PGRGuid* guid, bool* controlable);

private:
    struct BusManagerData;

    BusManagerData* m_pBusManagerData;
};

} // namespace FlyCapture2

#endif
