// Frame memory: setting up the host's, handing finished frames over, converting pixels.
#include "kx_host.h"
#include "kx_log.h"
#include "kx_pg_proc.h"
#include "kx_scenario.h"

#define KX_LOG_TAG "KX_PG_PROC"

namespace KxPGrey {

namespace {

/// The host's memory instances; without a number there is the plain pool.
constexpr int kPlainPool = -1;
constexpr int kRawFrames = 0;
constexpr int kConvertedFrames = 1;

/// Sets up the host's memory for raw frames. A session that has converted before uses instances.
void initRawMemory(CCamProc& proc, unsigned int count)
{
    if (proc.convFormat != 0) {
        proc.memInstance = kRawFrames;
        KxGiMemInst__Init(kRawFrames, count, 0);
        KxGiMemInst__SetActFsize(kRawFrames, proc.gBufferFrameSize);
        return;
    }
    proc.memInstance = kPlainPool;
    KxGiMem__Init(count, 0);
    KxGiMem__SetActFsize(proc.gBufferFrameSize);
    proc.convFormat = KxGiMainCtx__GetCformat();
}

/// The conversion to `codec` is possible: gives its frames an instance.
void initConversion(CCamProc& proc, unsigned int count, const char* codec)
{
    proc.convEnabled = true;
    if (proc.memInstance == kPlainPool) {
        proc.memInstance = kConvertedFrames;
    }
    KX_LOG_I("Initialize conversion to: \"%s\"\n", codec);
    if (proc.memInstance == kConvertedFrames) {
        proc.convFrameSize = proc.gBufferFrameSize;
        KxGiMemInst__Init(kConvertedFrames, count, 0);
        KxGiMemInst__SetActFsize(kConvertedFrames, proc.convFrameSize);
    }
    KxSc__InstSetParamVal(proc.memInstance, kKxScCodec, codec);
}

} // namespace

// The camera is a parameter for the callers' sake: no set-up asks it anything so far.
void CCamProc::ProcInitMem(CExCam* /*cam*/, unsigned int count)
{
    initRawMemory(*this, count);
    convEnabled = false;
    convTarget = FlyCapture2::UNSPECIFIED_PIXEL_FORMAT;
    if (convFormat == 0) {
        return;
    }
    KX_LOG_I("Conv: asking convertion from %i -> %i\n", static_cast<int>(pixelFormat), convFormat);
    const char* codec = nullptr;
    const int result = ProcSetPixelFormat(supportedFormats, nullptr, nullptr, &convFormat, nullptr,
                                          nullptr, &convTarget, &codec);
    if (result < 0) {
        KX_LOG_W("The asked pixel conversion way is not supported (rc=%i)\n", result);
        return;
    }
    initConversion(*this, count, codec);
}

int CCamProc::ProcLoopMem(unsigned long ts, int flag)
{
    int result = 0;
    // The converted frame goes first; when it is refused the raw one is not offered any more.
    for (const int instance : {kConvertedFrames, kRawFrames}) {
        unsigned char*& frame = pendingFrame[static_cast<std::size_t>(instance)];
        if (frame != nullptr && result == 0) {
            result = KxGiMemInst__Trigger(instance, 0, ts, frame, flag);
        }
        frame = nullptr;
    }
    return result;
}

void CCamProc::ProcLoopConv(FlyCapture2::Image* image)
{
    static bool bDumped = false;
    pendingFrame[kConvertedFrames] = nullptr;
    if (!convEnabled) {
        return;
    }
    const FlyCapture2::Error error = image->Convert(convTarget, &convImage);
    if (error != FlyCapture2::PGRERROR_OK) {
        // Every frame will fail; one message is enough for a process.
        if (!bDumped) {
            KX_LOG_W("got pixel Conversion error (%i): %s\n", static_cast<int>(error.GetType()),
                     error.GetDescription());
            bDumped = true;
        }
        return;
    }
    pendingFrame[static_cast<std::size_t>(memInstance)] = convImage.GetData();
    std::uint32_t& frameSize = memInstance == kRawFrames ? gBufferFrameSize : convFrameSize;
    const std::uint32_t size = convImage.GetDataSize();
    if (frameSize != size) {
        frameSize = size;
        KxGiMemInst__SetActFsize(memInstance, size);
    }
}

} // namespace KxPGrey
