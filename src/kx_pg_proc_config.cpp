// Configuration sequence: from a connected camera to one that is ready to capture.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_format7.h"
#include "kx_pg_number.h"
#include "kx_pg_proc.h"
#include "kx_pg_proc_print.h"
#include "kx_pg_shared.h"
#include "kx_pg_sizes.h"
#include "kx_scenario.h"

#define KX_LOG_TAG "KX_PG_PROC"

using FlyCapture2::CameraInfo;
using FlyCapture2::Error;
using FlyCapture2::Format7ImageSettings;
using FlyCapture2::Format7Info;
using FlyCapture2::Format7PacketInfo;
using FlyCapture2::PGRERROR_OK;

namespace {

/// A scenario value that outlives every export.
struct KXSCUVAL {
    static std::uint32_t _s_valU32;
};

std::uint32_t KXSCUVAL::_s_valU32 = 0;

} // namespace

namespace KxPGrey {

namespace {

/// The function that the messages of the helpers belong to.
constexpr const char* kCaller = "ProcSetCamConfig";

/// Failures of the configuration. Hosts have never told the two causes of -1 apart.
constexpr int kDone = 0;
constexpr int kNoFormat7Info = -1;
constexpr int kFormatNotSupported = -1;
constexpr int kNoFormat7 = -2;
constexpr int kSettingsRefused = -5;
constexpr int kCaptureRefused = -6;
constexpr int kSettingsInvalid = -7;

int readFormat7Info(CExCam& cam, Format7Info& format7)
{
    bool supported = false;
    const Error error = cam.GetFormat7Info(&format7, &supported);
    if (error != PGRERROR_OK) {
        KX_LOG_W_AS(kCaller, "Error during GetFormat7Info: %s\n", error.GetDescription());
        return kNoFormat7Info;
    }
    if (!supported) {
        KX_LOG_W_AS(kCaller, "The format 7 mode is not valid for this camera\n");
        return kNoFormat7;
    }
    return kDone;
}

void showCurrentSettings(CCamProc& proc, CExCam& cam, const Format7ImageSettings& settings)
{
    KX_LOG_I("~~ Camera Device Current Settings ~~\n");
    KX_LOG_I("~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
    printRegion(settings);
    proc.resultingFps = cam.ExPropertyGetAbs(FlyCapture2::FRAME_RATE);
    printPicture(cam, proc.resultingFps, settings);
    KX_LOG_I("~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
}

void resetLoopState(CCamProc& proc)
{
    proc.frameData = nullptr;
    proc.pendingFrame = {};
    proc.pendingSig = 0;
    proc.frameCounter = 0;
    proc.camTimeUs = 0;
    proc.storeMode = false;
    proc.tsOffsetUs = 5;
    proc.exposureUs = 10;
}

/// Pixel format and region of interest, into `settings`.
int chooseImage(CCamProc& proc, CExCam& cam, Format7Info& format7, Format7ImageSettings& settings)
{
    proc.pixelFormat = settings.pixelFormat;
    proc.cfgFormat = KxGiMainCtx__GetFormat();
    proc.supportedFormats = format7.pixelFormatBitField;
    if (proc.ProcSetPixelFormat(proc.supportedFormats, &settings, &cam, &proc.cfgFormat,
                                &proc.bitsPerPixel, &proc.dataBits, &proc.pixelFormat,
                                nullptr) < 0) {
        KX_LOG_E("The asked pixel format is not supported by device!\n");
        return kFormatNotSupported;
    }
    if (proc.isColor) {
        proc.curSaturation = cam.ExPropertyGetAbs(FlyCapture2::SATURATION);
        cam.ExPropertyGetRel(FlyCapture2::WHITE_BALANCE, &proc.curWbRed, &proc.curWbBlue);
    }
    proc.ProcParametrizeCamAoi(&format7, &settings);
    return kDone;
}

/// Sends `settings` to the camera; `packet` receives its answer.
int applyImage(CCamProc& proc, CExCam& cam, const Format7ImageSettings& settings,
               Format7PacketInfo& packet)
{
    // Whether the settings are called valid does not matter: cameras that do so still refuse them.
    bool valid = false;
    Error error = cam.ValidateFormat7Settings(&settings, &valid, &packet);
    if (error != PGRERROR_OK) {
        KX_LOG_W_AS(kCaller, "Error during ValidateFormat7Settings: %s\n", error.GetDescription());
        return kSettingsInvalid;
    }
    proc.stride = lineStride(proc.bitsPerPixel, settings.width);
    KX_LOG_I("recommendedBytesPerPacket : %u (max %u unit %u)\n", packet.recommendedBytesPerPacket,
             packet.maxBytesPerPacket, packet.unitBytesPerPacket);
    error = cam.SetFormat7Configuration(&settings, packet.recommendedBytesPerPacket);
    if (error != PGRERROR_OK) {
        KX_LOG_W_AS(kCaller, "Error during SetFormat7Configuration: %s\n", error.GetDescription());
        return kSettingsRefused;
    }
    return kDone;
}

/// Configures capture from scratch: nothing that an earlier client set may remain.
int applyCapture(CExCam& cam, unsigned int numBuffers)
{
    FlyCapture2::FC2Config config = {};
    config.numBuffers = numBuffers;
    config.numImageNotifications = 1;
    config.minNumImageNotifications = 0;
    config.grabTimeout = 2000;
    config.grabMode = FlyCapture2::DROP_FRAMES;
    config.highPerformanceRetrieveBuffer = false;
    config.isochBusSpeed = FlyCapture2::BUSSPEED_ANY;
    config.asyncBusSpeed = FlyCapture2::BUSSPEED_ANY;
    config.bandwidthAllocation = FlyCapture2::BANDWIDTH_ALLOCATION_UNSPECIFIED;
    config.registerTimeoutRetries = 0;
    config.registerTimeout = 0;
    const Error error = cam.SetConfiguration(&config);
    if (error != PGRERROR_OK) {
        KX_LOG_W_AS(kCaller, "Error during SetConfiguration: %s\n", error.GetDescription());
        return kCaptureRefused;
    }
    return kDone;
}

BusKind busOf(const CameraInfo& info)
{
    switch (info.interfaceType) {
    case FlyCapture2::INTERFACE_USB2:
        return BusKind::kUsb2;
    case FlyCapture2::INTERFACE_USB3:
        return BusKind::kUsb3;
    default:
        return BusKind::kOther;
    }
}

void sizeBuffers(CCamProc& proc, const CameraInfo& info, unsigned int height,
                 unsigned int packetBytes)
{
    constexpr std::uint32_t kCycleTimeRegister = 0x1EA8;
    proc.gBufferFrameSize = paddedFrameSize(proc.stride * height, busOf(info), packetBytes);
    proc.clockRegister = kCycleTimeRegister;
    KX_LOG_I("Set gBufferFrameSize to %u\n", proc.gBufferFrameSize);
}

/// The constant that hosts expect among the scenario values.
void publishUnit()
{
    KXSCUVAL::_s_valU32 = 1000;
    KxSc__SetParamVal(kKxScUnit, &KXSCUVAL::_s_valU32);
}

/// Reads what the appliers start from.
void readPhotometry(CCamProc& proc, CExCam& cam)
{
    proc.curGainDb = cam.ExPropertyGetAbs(FlyCapture2::GAIN);
    proc.curExpoUs = cam.ExPropertyGetAbs(FlyCapture2::SHUTTER) * 1000.0F;
    shared::set(cam.expoTimeUs, truncateToU32(static_cast<double>(proc.curExpoUs)));
    proc.gainModeApplied = 0;
    proc.expoModeApplied = 0;
    proc.swRotate = false;
}

} // namespace

int CCamProc::ProcSetCamConfig(CExCam* cam, CameraInfo* info, unsigned int bufferCount)
{
    printIdentity(*info);
    Format7Info format7 = {};
    if (const int result = readFormat7Info(*cam, format7); result != kDone) {
        return result;
    }
    printTemperature(*cam);
    Format7ImageSettings settings = readFormat7Settings(*cam);
    roiWidth = settings.width;
    roiHeight = settings.height;
    showCurrentSettings(*this, *cam, settings);
    resetLoopState(*this);

    if (const int result = chooseImage(*this, *cam, format7, settings); result != kDone) {
        return result;
    }
    Format7PacketInfo packet = {};
    if (const int result = applyImage(*this, *cam, settings, packet); result != kDone) {
        return result;
    }
    // Frames have this size from here on, even if the camera does not tell it again.
    roiWidth = settings.width;
    roiHeight = settings.height;
    numBuffers = bufferCount;
    if (const int result = applyCapture(*cam, numBuffers); result != kDone) {
        return result;
    }
    sizeBuffers(*this, *info, settings.height, packet.recommendedBytesPerPacket);
    ProcSetCamConfigChunks(cam);
    publishUnit();
    readPhotometry(*this, *cam);

    // A region that is not in force is no reason not to grab.
    KX_LOG_I("Applying initial configuration...\n");
    static_cast<void>(ProcParametrizeCam(cam, false));
    KX_LOG_I("...initial configuration is applied\n");
    return kDone;
}

} // namespace KxPGrey
