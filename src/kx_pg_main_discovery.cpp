// Camera discovery: what is on the buses, and which of it the configuration means.
#include "kx_pg_main_discovery.h"

#include "kx_log.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#define KX_LOG_TAG "KX_PG_MAIN"

using FlyCapture2::BusManager;
using FlyCapture2::CameraInfo;
using FlyCapture2::InterfaceType;
using FlyCapture2::PGRERROR_OK;
using FlyCapture2::PGRGuid;

namespace KxPGrey {

namespace {

/// The function that the messages of this file belong to.
constexpr const char* kCaller = "KxLibProc";

// ---- Inventory.

const char* interfaceName(InterfaceType type)
{
    switch (type) {
    case FlyCapture2::INTERFACE_USB2:
        return "USB2";
    case FlyCapture2::INTERFACE_USB3:
        return "USB3";
    case FlyCapture2::INTERFACE_GIGE:
        return "GigE";
    default:
        return "Not supported";
    }
}

KxPGreyIfaces classify(InterfaceType type)
{
    switch (type) {
    case FlyCapture2::INTERFACE_USB2:
    case FlyCapture2::INTERFACE_USB3:
        KX_LOG_I("detected PGrey USB device\n");
        return kKxPGreyOther;
    case FlyCapture2::INTERFACE_GIGE:
        KX_LOG_I("detected PGrey GigE device\n");
        return kKxPGreyGigE;
    default:
        return kKxPGreyOther;
    }
}

void printDevice(unsigned int index, const PGRGuid& guid, unsigned int serial, InterfaceType type)
{
    KX_LOG_I("== %u. Camera Device Information ==\n", index);
    KX_LOG_I("===================================\n");
    KX_LOG_I("\tGUID             : 0x%X 0x%X 0x%X 0x%X\n", guid.value[0], guid.value[1],
             guid.value[2], guid.value[3]);
    KX_LOG_I("\tDeviceSerial     : %u\n", serial);
    KX_LOG_I("\tInterface        : %s\n", interfaceName(type));
}

/// Asks the bus about one camera. One that it cannot tell about counts as not GigE.
KxPGreyIfaces lookAtDevice(BusManager& bus, unsigned int index)
{
    PGRGuid guid;
    if (bus.GetCameraFromIndex(index, &guid) != PGRERROR_OK) {
        KX_LOG_D_AS(kCaller, "can't do GetCameraFromIndex for device %i\n", index);
        return kKxPGreyOther;
    }
    unsigned int serial = 0;
    if (bus.GetCameraSerialNumberFromIndex(index, &serial) != PGRERROR_OK) {
        KX_LOG_D_AS(kCaller,
                    "can't do GetCameraSerialNumberFromIndex %i, guid 0x%X 0x%X 0x%X 0x%X\n", index,
                    guid.value[0], guid.value[1], guid.value[2], guid.value[3]);
        return kKxPGreyOther;
    }
    InterfaceType type = FlyCapture2::INTERFACE_UNKNOWN;
    if (bus.GetInterfaceTypeFromGuid(&guid, &type) != PGRERROR_OK) {
        KX_LOG_D_AS(kCaller, "can't do GetInterfaceTypeFromGuid %i, guid 0x%X 0x%X 0x%X 0x%X\n",
                    index, guid.value[0], guid.value[1], guid.value[2], guid.value[3]);
        return kKxPGreyOther;
    }
    printDevice(index, guid, serial, type);
    return classify(type);
}

// ---- Selection.

/// Connects the camera and reads its description. Leaves it disconnected on failure.
bool openCamera(BusManager& bus, unsigned int index, CExCam& camera, PGRGuid& guid,
                CameraInfo& info)
{
    if (bus.GetCameraFromIndex(index, &guid) != PGRERROR_OK) {
        KX_LOG_I("can't do GetCameraFromIndex for device %i\n", index);
        return false;
    }
    if (camera.Connect(&guid) != PGRERROR_OK) {
        KX_LOG_I("can't connect to Camera for device %i, is it occupied by somebody else?\n",
                 index);
        return false;
    }
    if (camera.GetCameraInfo(&info) != PGRERROR_OK) {
        KX_LOG_I("can't do GetCameraInfo for connected device %i\n", index);
        static_cast<void>(camera.Disconnect());
        return false;
    }
    return true;
}

bool modelMatches(unsigned int index, const char* model, const CameraInfo& info)
{
    if (model == nullptr) {
        return false;
    }
    const int result = std::strncmp(info.modelName, model, std::strlen(model));
    KX_LOG_I("Loop %u. Check configured Model \"%s\" with \"%s\" (result %i)\n", index, model,
             info.modelName, result);
    return result == 0;
}

bool serialMatches(const char* text, const CameraInfo& info)
{
    if (text == nullptr || *text == '\0') {
        return true;
    }
    char* rest = nullptr;
    errno = 0;
    const unsigned long serial = std::strtoul(text, &rest, 0);
    const int error = errno;
    if (error != 0 || *rest != '\0') {
        KX_LOG_W_AS(kCaller, "pIdStr conversion error - errno: '%s', errChars: '%s'\n",
                    std::strerror(error), rest);
        return false;
    }
    KX_LOG_I("Check configured Serial \"%s\" with \"%u\"\n", text, info.serialNumber);
    return serial == info.serialNumber;
}

bool maskMatches(unsigned int index, std::uint32_t activeMask, const CameraInfo& info)
{
    if ((activeMask & (1U << (index % 32U))) == 0) {
        return false;
    }
    KX_LOG_I("Loop %u. Choose Model \"%s\" Serial \"%u\" using command line option\n", index,
             info.modelName, info.serialNumber);
    return true;
}

bool isWanted(unsigned int index, const Wanted& wanted, const CameraInfo& info)
{
    return (modelMatches(index, wanted.model, info) && serialMatches(wanted.serial, info)) ||
           maskMatches(index, wanted.activeMask, info);
}

} // namespace

void takeInventory(BusManager& bus, unsigned int count, Inventory& inventory)
{
    KX_LOG_I("Printing all the devices information found:\n");
    for (unsigned int index = 0; index < count; ++index) {
        inventory.cameras[index] = std::make_unique<CExCam>();
        inventory.ifaces[index] = lookAtDevice(bus, index);
    }
}

Chosen chooseCamera(BusManager& bus, unsigned int count, const Wanted& wanted, Inventory& inventory)
{
    Chosen chosen;
    for (unsigned int index = 0; index < count; ++index) {
        std::unique_ptr<CExCam> camera = std::move(inventory.cameras[index]);
        if (!openCamera(bus, index, *camera, chosen.guid, chosen.info)) {
            continue;
        }
        if (isWanted(index, wanted, chosen.info)) {
            chosen.camera = std::move(camera);
            chosen.iface = inventory.ifaces[index];
            break;
        }
        static_cast<void>(camera->Disconnect());
    }
    return chosen;
}

} // namespace KxPGrey
