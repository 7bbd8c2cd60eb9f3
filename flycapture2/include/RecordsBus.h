// Records that say which cameras are on the buses and where.
#ifndef KX_FLYCAPTURE2_RECORDS_BUS_H
#define KX_FLYCAPTURE2_RECORDS_BUS_H

#include "FlyCapture2Enums.h"

namespace FlyCapture2 {

/// Length in bytes of every string in a record, the terminating zero included.
constexpr unsigned int sk_maxStringLength = 512;

/// Called by the library's own thread when a bus changes: user data, serial number of the camera.
using BusEventCallback = void (*)(void*, unsigned int);

/// Names one registered bus callback; owned by the library until it is unregistered.
using CallbackHandle = void*;

/// Names one camera on one bus for as long as it stays plugged in; opaque.
struct PGRGuid {
    PGRGuid() = default;

    unsigned int value[4] = {}; ///< Compared as a whole; the words mean nothing by themselves.
};

/// An IPv4 address.
struct IPAddress {
    IPAddress() = default;

    unsigned char octets[4] = {}; ///< In the order they are written: 192, 168, 0, 1.
};

/// A hardware address of a network interface.
struct MACAddress {
    MACAddress() = default;

    unsigned char octets[6] = {}; ///< In the order they are written.
};

/// What the configuration ROM of an IEEE 1394 style camera says about its maker.
struct ConfigROM {
    ConfigROM() = default;

    unsigned int nodeVendorId = 0;            ///< Vendor of the node.
    unsigned int chipIdHi = 0;                ///< Upper part of the chip's id.
    unsigned int chipIdLo = 0;                ///< Lower part of the chip's id.
    unsigned int unitSpecId = 0;              ///< Who defined the unit's interface.
    unsigned int unitSWVer = 0;               ///< Software version of the unit.
    unsigned int unitSubSWVer = 0;            ///< Software sub-version of the unit.
    unsigned int vendorUniqueInfo_0 = 0;      ///< Free for the vendor.
    unsigned int vendorUniqueInfo_1 = 0;      ///< Free for the vendor.
    unsigned int vendorUniqueInfo_2 = 0;      ///< Free for the vendor.
    unsigned int vendorUniqueInfo_3 = 0;      ///< Free for the vendor.
    char pszKeyword[sk_maxStringLength] = {}; ///< Keyword, zero-terminated.
    unsigned int reserved[16] = {};
};

/// Who a camera is and how it is attached. Strings are zero-terminated.
struct CameraInfo {
    CameraInfo() = default;

    unsigned int serialNumber = 0;                     ///< As printed on the housing.
    InterfaceType interfaceType = INTERFACE_UNKNOWN;   ///< Kind of bus it is on.
    DriverType driverType = DRIVER_UNKNOWN;            ///< Kernel driver that serves it.
    bool isColorCamera = false;                        ///< Whether the sensor has a tile filter.
    char modelName[sk_maxStringLength] = {};           ///< Model.
    char vendorName[sk_maxStringLength] = {};          ///< Maker of the camera.
    char sensorInfo[sk_maxStringLength] = {};          ///< Sensor type.
    char sensorResolution[sk_maxStringLength] = {};    ///< Sensor size as text: "1280x1024".
    char driverName[sk_maxStringLength] = {};          ///< Name of the driver.
    char firmwareVersion[sk_maxStringLength] = {};     ///< Firmware version.
    char firmwareBuildTime[sk_maxStringLength] = {};   ///< When the firmware was built.
    BusSpeed maximumBusSpeed = BUSSPEED_SPEED_UNKNOWN; ///< The fastest its bus allows.
    BayerTileFormat bayerTileFormat = NONE;            ///< Tile of the sensor's filter.
    unsigned short busNumber = 0;                      ///< Number of the bus, 1394 and USB.
    unsigned short nodeNumber = 0;                     ///< Number of the node on its bus.
    PCIeBusSpeed pcieBusSpeed = PCIE_BUSSPEED_UNKNOWN; ///< Link of the host adapter, USB 3 only.
    unsigned int iidcVer = 0;                          ///< IIDC version times 100: 132.
    ConfigROM configROM;                               ///< Configuration ROM.
    unsigned int gigEMajorVersion = 0;                 ///< GigE Vision version, GigE only.
    unsigned int gigEMinorVersion = 0;                 ///< GigE Vision version, GigE only.
    char userDefinedName[sk_maxStringLength] = {};     ///< Name that a user stored in it.
    char xmlURL1[sk_maxStringLength] = {};             ///< First place of the description.
    char xmlURL2[sk_maxStringLength] = {};             ///< Second place of the description.
    MACAddress macAddress;                             ///< Hardware address, GigE only.
    IPAddress ipAddress;                               ///< Address in force, GigE only.
    IPAddress subnetMask;                              ///< Subnet mask, GigE only.
    IPAddress defaultGateway;                          ///< Gateway, GigE only.
    unsigned int ccpStatus = 0;                        ///< Control channel privilege, GigE only.
    unsigned int applicationIPAddress = 0;             ///< Host that controls it, GigE only.
    unsigned int applicationPort = 0;                  ///< Port of that host, GigE only.
    unsigned int reserved[16] = {};
};

} // namespace FlyCapture2

#endif
