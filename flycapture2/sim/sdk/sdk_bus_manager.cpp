// FlyCapture2::BusManager: what is on the simulated bus.
#include "base/sdk_error.h"
#include "camera/bus.h"
#include "sdk/call_gate.h"

#include <FlyCapture2.h>

#include <string>

namespace FlyCapture2 {

namespace {

/// Sends a call through the gate. A bus whose description is bad fails every call with its text.
template <class Work>
Error busCall(const char* operation, const std::string& arguments, const Work& work)
{
    const auto describe = [&] { return arguments; };
    const auto checked = [&]() -> Error {
        const std::string problem = fcsim::Bus::instance().problem();
        return problem.empty() ? Error(work())
                               : fcsim::makeError(PGRERROR_INVALID_BUS_MANAGER, problem);
    };
    return fcsim::throughGate({"BusManager", operation}, describe, checked);
}

Error leftOut(const char* operation)
{
    return busCall(operation, {}, fcsim::notImplemented);
}

Error nullArgument(const char* operation)
{
    return fcsim::makeError(PGRERROR_INVALID_PARAMETER, std::string(operation) + ": null argument");
}

/// Calls `use` with the camera at `index`.
template <class Use>
Error atIndex(const char* operation, unsigned index, bool given, const Use& use)
{
    return busCall(operation, std::to_string(index), [&]() -> Error {
        if (!given) {
            return nullArgument(operation);
        }
        const std::vector<fcsim::Device*> cameras = fcsim::Bus::instance().attached();
        if (index >= cameras.size()) {
            return fcsim::makeError(PGRERROR_NOT_FOUND,
                                    "there is no camera at index " + std::to_string(index));
        }
        use(*cameras[index]);
        return fcsim::success();
    });
}

/// Calls `use` with the camera that `guid` names.
template <class Use>
Error withGuid(const char* operation, const PGRGuid* guid, bool given, const Use& use)
{
    return busCall(operation, {}, [&]() -> Error {
        if (guid == nullptr || !given) {
            return nullArgument(operation);
        }
        fcsim::Device* device = fcsim::Bus::instance().find(*guid);
        if (device == nullptr) {
            return fcsim::makeError(PGRERROR_NOT_FOUND, "there is no camera with this guid");
        }
        use(*device);
        return fcsim::success();
    });
}

} // namespace

BusManager::BusManager() : m_pBusManagerData(nullptr) {}

BusManager::~BusManager() = default;

Error BusManager::FireBusReset(PGRGuid*)
{
    return leftOut("FireBusReset");
}

Error BusManager::GetNumOfCameras(unsigned int* pNumCameras)
{
    return busCall("GetNumOfCameras", {}, [&]() -> Error {
        if (pNumCameras == nullptr) {
            return nullArgument("GetNumOfCameras");
        }
        *pNumCameras = static_cast<unsigned>(fcsim::Bus::instance().attached().size());
        return fcsim::success();
    });
}

Error BusManager::GetCameraFromIPAddress(IPAddress, PGRGuid*)
{
    return leftOut("GetCameraFromIPAddress");
}

Error BusManager::GetCameraFromIndex(unsigned int index, PGRGuid* pGuid)
{
    return atIndex("GetCameraFromIndex", index, pGuid != nullptr,
                   [&](const fcsim::Device& device) { *pGuid = device.guid(); });
}

Error BusManager::GetCameraFromSerialNumber(unsigned int serialNumber, PGRGuid* pGuid)
{
    return busCall("GetCameraFromSerialNumber", std::to_string(serialNumber), [&]() -> Error {
        if (pGuid == nullptr) {
            return nullArgument("GetCameraFromSerialNumber");
        }
        const fcsim::Device* device = fcsim::Bus::instance().find(serialNumber);
        if (device == nullptr) {
            return fcsim::makeError(PGRERROR_NOT_FOUND, "there is no camera with serial number " +
                                                            std::to_string(serialNumber));
        }
        *pGuid = device->guid();
        return fcsim::success();
    });
}

Error BusManager::GetCameraSerialNumberFromIndex(unsigned int index, unsigned int* pSerialNumber)
{
    return atIndex(
        "GetCameraSerialNumberFromIndex", index, pSerialNumber != nullptr,
        [&](const fcsim::Device& device) { *pSerialNumber = device.description().serial; });
}

Error BusManager::GetInterfaceTypeFromGuid(PGRGuid* pGuid, InterfaceType* pInterfaceType)
{
    return withGuid(
        "GetInterfaceTypeFromGuid", pGuid, pInterfaceType != nullptr,
        [&](const fcsim::Device& device) { *pInterfaceType = device.description().interface; });
}

Error BusManager::GetNumOfDevices(unsigned int*)
{
    return leftOut("GetNumOfDevices");
}

Error BusManager::GetDeviceFromIndex(unsigned int, PGRGuid*)
{
    return leftOut("GetDeviceFromIndex");
}

Error BusManager::ReadPhyRegister(PGRGuid, unsigned int, unsigned int, unsigned int, unsigned int*)
{
    return leftOut("ReadPhyRegister");
}

Error BusManager::WritePhyRegister(PGRGuid, unsigned int, unsigned int, unsigned int, unsigned int)
{
    return leftOut("WritePhyRegister");
}

Error BusManager::GetUsbLinkInfo(PGRGuid, unsigned int*)
{
    return leftOut("GetUsbLinkInfo");
}

Error BusManager::GetUsbPortStatus(PGRGuid, unsigned int*)
{
    return leftOut("GetUsbPortStatus");
}

Error BusManager::GetTopology(TopologyNode*)
{
    return leftOut("GetTopology");
}

Error BusManager::RegisterCallback(BusEventCallback, BusCallbackType, void*, CallbackHandle*)
{
    return leftOut("RegisterCallback");
}

Error BusManager::UnregisterCallback(CallbackHandle)
{
    return leftOut("UnregisterCallback");
}

Error BusManager::RescanBus()
{
    return busCall("RescanBus", {}, fcsim::success); // the bus is always up to date
}

Error BusManager::ForceIPAddressToCamera(MACAddress, IPAddress, IPAddress, IPAddress)
{
    return leftOut("ForceIPAddressToCamera");
}

Error BusManager::ForceAllIPAddressesAutomatically()
{
    return leftOut("ForceAllIPAddressesAutomatically");
}

Error BusManager::ForceAllIPAddressesAutomatically(unsigned int)
{
    return leftOut("ForceAllIPAddressesAutomatically");
}

Error BusManager::DiscoverGigECameras(CameraInfo*, unsigned int*)
{
    return leftOut("DiscoverGigECameras");
}

Error BusManager::IsCameraControlable(PGRGuid* pGuid, bool* pControlable)
{
    return withGuid("IsCameraControlable", pGuid, pControlable != nullptr,
                    [&](const fcsim::Device& device) { *pControlable = !device.owned(); });
}

} // namespace FlyCapture2
