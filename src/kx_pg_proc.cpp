// The camera session: stream channel of GigE cameras, the grab loop's repetition, tearing down.
#include "kx_pg_proc.h"

#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_cthr.h"

#define KX_LOG_TAG "KX_PG_PROC"

using FlyCapture2::GigECamera;
using FlyCapture2::GigEStreamChannel;
using FlyCapture2::PGRERROR_OK;
using FlyCapture2::PGRGuid;

KxPGrey::CBufferFactory kxBufFactory;

namespace KxPGrey {

CCamProc::CCamProc() = default;

CCamProc::~CCamProc() = default;

int CCamProc::ProcOnce(CExCam* cam, FlyCapture2::CameraInfo* info, CBufferFactory* factory)
{
    KX_LOG_I("Using device Model:%s Serial:%u\n", info->modelName, info->serialNumber);
    dynLutState = kDynLutIdle;
    dynLutMode = kDynLutPlain;
    freeDynLut();
    pendingSig = 0;
    frameCounter = 0;

    int result = 0;
    do {
        result = ProcLoop(cam, info, factory);
    } while (result == 0 && (dynLutMode == kDynLutWideAsked || dynLutMode == kDynLutWideDone));

    freeDynLut();
    return result;
}

namespace {

constexpr unsigned int kStreamChannel = 0;
constexpr unsigned int kPacketDelay = 10;

unsigned int wantedPacketSize()
{
    constexpr unsigned int kLargest = 9000;
    constexpr unsigned int kDefault = 1500;
    const unsigned int configured = KxGiMainCtx__GetDatachunk();
    return configured >= 1 && configured <= kLargest ? configured : kDefault;
}

/// Sets packet size and delay of the stream channel, if they are not yet what they should be.
void adjustStreamChannel(GigECamera& gige)
{
    unsigned int channels = 0;
    if (gige.GetNumStreamChannels(&channels) != PGRERROR_OK || channels == 0) {
        return;
    }
    GigEStreamChannel channel;
    if (gige.GetGigEStreamChannelInfo(kStreamChannel, &channel) != PGRERROR_OK) {
        return;
    }
    const unsigned int packetSize = wantedPacketSize();
    KX_LOG_I("Current packetDelay %u, packetSize %u, IPfragmentation %i\n",
             channel.interPacketDelay, channel.packetSize, channel.doNotFragment ? 0 : 1);
    if (channel.interPacketDelay == kPacketDelay && channel.packetSize == packetSize) {
        return;
    }
    channel.interPacketDelay = kPacketDelay;
    channel.packetSize = packetSize;
    static_cast<void>(gige.SetGigEStreamChannelInfo(kStreamChannel, &channel));
    if (gige.GetGigEStreamChannelInfo(kStreamChannel, &channel) == PGRERROR_OK) {
        KX_LOG_I("New packetDelay %u, packetSize %u, IPfragmentation %i\n",
                 channel.interPacketDelay, channel.packetSize, channel.doNotFragment ? 0 : 1);
    }
}

/// Adjusts the stream channel over a second connection; a device takes only one at a time. Returns
/// whether the camera is connected again.
bool tuneGigE(GigECamera& gige, PGRGuid& guid, CExCam& cam)
{
    static_cast<void>(cam.Disconnect());
    if (gige.Connect(&guid) == PGRERROR_OK) {
        adjustStreamChannel(gige);
    }
    static_cast<void>(gige.Disconnect());
    return cam.Connect(&guid) == PGRERROR_OK;
}

} // namespace

} // namespace KxPGrey

int KxPgProc(KxPGreyIfaces iface, FlyCapture2::PGRGuid guid, KxPGrey::CExCam* cam,
             FlyCapture2::CameraInfo* info)
{
    GigECamera gige;
    KxPGrey::CCamProc proc;
    KxPGrey::CCamCtrlThread control; // stops its thread before all else goes
    KX_LOG_I("KxPgProc entry: if=%u\n", static_cast<unsigned int>(iface));
    if (iface == kKxPGreyGigE && !KxPGrey::tuneGigE(gige, guid, *cam)) {
        KX_LOG_E("Can't connect to camera\n");
        return -1;
    }
    control.CtrlThreadStart(cam);
    const int result = proc.ProcOnce(cam, info, &kxBufFactory);
    KX_LOG_I("scenario is completed (rc = %i)\n", result);
    return result;
}
