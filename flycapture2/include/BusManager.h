// The camera maker's interface, first declaration.
#pragma once
#include "Error.h"
namespace FlyCapture2 {
class FC2_API BusManager {
public:
    virtual ~BusManager();
    virtual Error FireBusReset(PGRGuid*);
    virtual Error GetNumOfCameras(unsigned int*);
    virtual Error GetCameraFromIPAddress(IPAddress, PGRGuid*);
    virtual Error GetCameraFromIndex(unsigned int, PGRGuid*);
    virtual Error GetCameraFromSerialNumber(unsigned int, PGRGuid*);
    virtual Error GetCameraSerialNumberFromIndex(unsigned int, unsigned int*);
    virtual Error GetInterfaceTypeFromGuid(PGRGuid*, InterfaceType*);
    virtual Error GetNumOfDevices(unsigned int*);
    virtual Error GetDeviceFromIndex(unsigned int, PGRGuid*);
    virtual Error ReadPhyRegister(PGRGuid, unsigned int, unsigned int, unsigned int, unsigned int*);
    virtual Error WritePhyRegister(PGRGuid, unsigned int, unsigned int, unsigned int, unsigned int);
    virtual Error GetUsbLinkInfo(PGRGuid, unsigned int*);
    virtual Error GetUsbPortStatus(PGRGuid, unsigned int*);
    virtual Error GetTopology(TopologyNode*);
    virtual Error RegisterCallback(BusEventCallback, BusCallbackType, void*, CallbackHandle*);
    virtual Error UnregisterCallback(CallbackHandle);
    virtual Error RescanBus();
    BusManager();
    static Error ForceIPAddressToCamera(MACAddress, IPAddress, IPAddress, IPAddress);
    static Error ForceAllIPAddressesAutomatically();
    static Error ForceAllIPAddressesAutomatically(unsigned int);
    static Error DiscoverGigECameras(CameraInfo*, unsigned int*);
    Error IsCameraControlable(PGRGuid*, bool*);

private:
    BusManager(const BusManager&);
    BusManager& operator=(const BusManager&);
    struct BusManagerData;
    BusManagerData* m_pBusManagerData;
};
} // namespace FlyCapture2
