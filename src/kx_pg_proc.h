// The camera session: everything from the chosen, powered-up camera to the last exported frame.
#ifndef KX_PG_PROC_H
#define KX_PG_PROC_H

#include "kx_export.h"
#include "kx_pg_excam.h"
#include "kx_pg_factory.h"
#include "kx_pg_frame_clock.h"

#include <FlyCapture2.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>

/// How the camera is attached, as far as a session cares.
enum KxPGreyIfaces : unsigned int {
    kKxPGreyGigE = 0,
    kKxPGreyOther = 1,
};

/// Runs one session on the connected camera `cam`, which stays the caller's; `info` is its
/// description. Returns the result of the grab, or -1 when a GigE camera could not be connected
/// again after its stream channel was adjusted.
KX_API int KxPgProc(KxPGreyIfaces iface, FlyCapture2::PGRGuid guid, KxPGrey::CExCam* cam,
                    FlyCapture2::CameraInfo* info);

namespace KxPGrey {

/// Bits of `CCamProc::chunkMask`: what the camera embeds into each image.
enum ChunkBit : std::uint32_t {
    kChunkGain = 1,
    kChunkExposure = 2,
    kChunkTimestamp = 4,
    kChunkFrameCounter = 8,
};

/// Who sets a value: modes of gain, exposure time and look-up table in the host's configuration.
enum SweepMode : std::uint32_t {
    kSweepKept = 0,
    kSweepManual = 1,
    kSweepAutomatic = 2,
};

/// Codes of the host's signals.
enum SignalCode : std::uint32_t {
    kSigFinish = 1,
    kSigReconfigure = 2,
    kSigUser1 = 3, ///< calculate a look-up table
    kSigUser2 = 4, ///< calculate one from a 12-bit frame
    kSigFinishToo = 5,
};

/// Whether the signal ends the grab.
bool isFinishing(std::uint32_t code);

/// Steps of the dynamic look-up table. A pass with the camera's table on takes two frames, as it is
/// switched off first; nothing waits longer for a clear frame at present.
enum DynLutState : std::uint32_t {
    kDynLutIdle = 0,
    kDynLutStart = 1,
    kDynLutWaitTwo = 2,
    kDynLutWaitOne = 3,
    kDynLutCalculate = 4,
    kDynLutApply = 5,
    kDynLutFinish = 8,
};

/// What kind of pass it is. A wide one calculates from a 12-bit frame of an otherwise 8-bit grab,
/// for which the loop is started again, and once more to go back.
enum DynLutMode : std::uint32_t {
    kDynLutPlain = 0,
    kDynLutWideAsked = 6,
    kDynLutWideDone = 7, ///< calculated, 8 bits are to be restored
};

/// Releases blocks from calloc.
struct FreeBlock {
    void operator()(void* block) const { std::free(block); }
};

/// The session object. All of it belongs to the grab thread.
class CCamProc {
public:
    KX_API CCamProc();
    KX_API ~CCamProc();
    CCamProc(const CCamProc&) = delete;
    CCamProc& operator=(const CCamProc&) = delete;

    // ---- Session and grab loop.

    /// Runs the grab loop until it is done, again and again while a 12-bit look-up table pass wants
    /// a new start. Returns the last result of `ProcLoop`.
    KX_API int ProcOnce(CExCam* cam, FlyCapture2::CameraInfo* info, CBufferFactory* factory);
    /// Configures the camera and grabs until the frame count is reached or something ends it.
    /// Returns 0 as asked, 1 a new configuration was refused, -1 the buffers were refused, -2 the
    /// camera could not be configured, -10 it stopped delivering or an exception ended the grab.
    KX_API int ProcLoop(CExCam* cam, FlyCapture2::CameraInfo* info, CBufferFactory* factory);

    // ---- Configuration.

    /// Brings the camera into the configured state. Returns 0, or -1 no Format7 information or
    /// pixel format not supported, -2 no Format7 mode 0, -5 settings refused, -6 capture
    /// configuration refused, -7 settings not valid. The camera is partly configured after a
    /// failure.
    KX_API int ProcSetCamConfig(CExCam* cam, FlyCapture2::CameraInfo* info,
                                unsigned int numBuffers);
    /// Applies the configured parameters; `dynamic` leaves out all that needs a stopped capture or
    /// changes geometry. Returns 0, or non-zero when the configured size is not the one in force.
    KX_API int ProcParametrizeCam(CExCam* cam, bool dynamic);
    /// Switches the embedded image information off again.
    KX_API void ProcSetCamConfigEnd(CExCam* cam);
    /// Switches on all of the embedded image information that the camera offers.
    KX_API void ProcSetCamConfigChunks(CExCam* cam);
    /// Maps the host's format code to a pixel format of the camera. `settings` null: no check
    /// against `supported`, nothing published. `cfgFormat` becomes 1 when the camera lacks a format
    /// that 8-bit mono can stand for. Outputs may be null, `cam` too (the Bayer tile is then not
    /// known). Returns 0, or -1 = not supported.
    KX_API int ProcSetPixelFormat(unsigned int supported,
                                  FlyCapture2::Format7ImageSettings* settings, CExCam* cam,
                                  unsigned char* cfgFormat, unsigned char* strideBits,
                                  unsigned char* dataBits, FlyCapture2::PixelFormat* pixelFormat,
                                  const char** codecName);
    /// Writes the configured region of interest into `settings`, each value that fits the limits in
    /// `info`. Returns the rejected ones: 1 offset X, 2 offset Y, 4 width, 8 height.
    KX_API unsigned int ProcParametrizeCamAoi(FlyCapture2::Format7Info* info,
                                              FlyCapture2::Format7ImageSettings* settings);
    /// Loads a look-up table into the camera's bank that is not active and makes it the active
    /// one: the host's, or with `dynamic` the calculated one. Without a table the camera's is
    /// switched off. Does nothing for the table that was loaded last, nor with the host's while one
    /// is being calculated. A failure is logged and leaves the camera's former table in force.
    KX_API void ProcParametrizeCamManLUT(CExCam* cam, bool dynamic);
    /// 1 = the configured width or height is not the camera's current one, else 0.
    KX_API int ProcCheckCfgCamAoi(CExCam* cam);

    // ---- Appliers: each carries one group of configured values to the camera. A value that stands
    // ---- for "as it is" is left alone, one out of the camera's range is warned of and skipped.

    /// Frame rate.
    KX_API void ProcParametrizeCamFps(CExCam* cam);
    /// Rotation by the host's conversion; the camera takes no part.
    KX_API void ProcParametrizeCamRotate(CExCam* cam);
    /// Saturation.
    KX_API void ProcParametrizeCamSatur(CExCam* cam);
    /// White balance, red and blue. Values out of range reach the camera's object all the same,
    /// which keeps what is in force of each.
    KX_API void ProcParametrizeCamWB(CExCam* cam);
    /// Target level and limits of the automatic functions.
    KX_API void ProcParametrizeCamAutoFuncParams(CExCam* cam);
    /// Who controls gain and exposure, `SweepMode`; `profile` 1 switches auto exposure on. The
    /// camera is told only when a mode changes, and only once.
    KX_API void ProcParametrizeCamAutoFunc(CExCam* cam, std::uint32_t profile,
                                           std::uint32_t gainMode, std::uint32_t expoMode);
    /// Gain and exposure time of the manual modes.
    KX_API void ProcParametrizeCamManGain(CExCam* cam);
    KX_API void ProcParametrizeCamManExpo(CExCam* cam);
    /// Gamma; a gamma of 1 switches the camera's off.
    KX_API void ProcParametrizeCamGamma(CExCam* cam);
    /// Lines of the I/O box, the first three that are configured: into the records of their pins,
    /// from where the control thread applies them. Does nothing while it has not done so yet.
    KX_API void ProcParametrizeCamOutLines(CExCam* cam);

    // ---- Frame memory and conversion.

    /// Sets up the host's frame memory for `count` buffers, and the conversion when one is
    /// configured.
    KX_API void ProcInitMem(CExCam* cam, unsigned int count);
    /// Hands the pending frames to the host, the converted one first. Returns 0 = accepted, or the
    /// host's refusal.
    KX_API int ProcLoopMem(unsigned long ts, int flag);
    /// Converts the frame when a conversion is set up; the result becomes a pending frame.
    KX_API void ProcLoopConv(FlyCapture2::Image* image);
    /// Publishes the frame's gain, exposure, camera time and counter. Returns the start of exposure
    /// on the camera's clock in microseconds.
    KX_API std::uint64_t ProcFrameChunks(CExCam* cam, FlyCapture2::Image* image);

    // ---- Signals and the dynamic look-up table.

    /// Takes over the signal that the host has for us, if any.
    KX_API void ProcLookSignal();
    /// Starts the calculation of a look-up table when the pending signal asks for one; `captured`
    /// frames were retrieved so far. Always 0.
    KX_API int ProcSignalUsr(unsigned int captured);
    /// Advances the dynamic look-up table by the step that `dynLutState` asks for, on the current
    /// frame. Cheap when there is nothing to do.
    KX_API void ProcDynamLut(CExCam* cam);
    /// Releases the arrays of the dynamic look-up table.
    void freeDynLut();
    /// Acts on the pending signal after a frame; without one, and without a look-up table being
    /// calculated, on a live change of the host's configuration. `*stop` (may be null) is set when
    /// one is pending: whether the grab is to end. Returns the grab's exit code for that case.
    KX_API int ProcSignal(CExCam* cam, unsigned int captured, bool* stop);

    // ---- Set by the configuration, read by the grab loop.

    std::uint32_t numBuffers = 0;
    std::uint32_t roiWidth = 0;  ///< pixels; published
    std::uint32_t roiHeight = 0; ///< pixels; published
    FlyCapture2::PixelFormat pixelFormat = FlyCapture2::UNSPECIFIED_PIXEL_FORMAT;
    std::uint32_t supportedFormats = 0; ///< the camera's pixel formats, one bit each
    unsigned char cfgFormat = 0;        ///< host's format code, after a fallback the one in force
    unsigned char bitsPerPixel = 0;     ///< bits that a pixel takes in memory
    unsigned char dataBits = 0;         ///< bits of it that carry data
    bool isColor = false;               ///< colour made by the camera: YUV, not raw Bayer
    bool swRotate = false;              ///< the host's conversion rotates
    bool storeMode = false;             ///< handed to the host with each frame
    float curSaturation = 0;
    std::uint32_t curWbRed = 0;
    std::uint32_t curWbBlue = 0;
    std::uint32_t gainModeApplied = 0;  ///< `SweepMode` last told to the camera
    std::uint32_t expoModeApplied = 0;  ///< the same of the exposure time
    std::uint32_t stride = 0;           ///< bytes of an image line
    std::uint32_t activeFrameSize = 0;  ///< bytes of a frame without padding
    std::uint32_t gBufferFrameSize = 0; ///< bytes of a raw frame's buffer, padded for the bus
    std::uint32_t clockRegister = 0;    ///< address of the camera's clock
    std::uint32_t chunkMask = 0;        ///< what the camera embeds, `ChunkBit`
    float resultingFps = 0;
    std::uint32_t framePeriodUs = 0;
    std::uint32_t tsOffsetUs = 0;
    std::int32_t tsAdjNs =
        0; ///< drift of the camera's clock; 0 = time stamps from the host's clock

    // ---- Frame memory, set by `ProcInitMem`.

    std::int32_t memInstance =
        -1; ///< -1 the plain pool, else the instance that receives conversions
    unsigned char convFormat = 0; ///< host's format code to convert to, 0 = none
    bool convEnabled = false;
    FlyCapture2::PixelFormat convTarget = FlyCapture2::UNSPECIFIED_PIXEL_FORMAT;
    std::uint32_t convFrameSize = 0; ///< bytes of a converted frame, instance 1

    // ---- The current frame. What is published lives here, so that it outlives every export.

    unsigned char* frameData = nullptr;              ///< raw pixels
    std::array<unsigned char*, 2> pendingFrame = {}; ///< by instance, null = nothing to hand over
    float curGainDb = 0;
    float curExpoUs = 0;
    std::int32_t exposureUs = 0;
    std::uint64_t camTimeUs = 0;
    std::uint32_t frameCounter = 0;
    FrameClock frameClock;    ///< its `frameTs` is published
    std::uint32_t rxData = 0; ///< word received on a line
    std::uint32_t rxBits = 0; ///< its bits

    // ---- Signals and the dynamic look-up table.

    std::uint32_t pendingSig = 0;
    std::uint32_t dynLutState = kDynLutIdle;
    std::uint32_t dynLutMode = kDynLutPlain;
    std::unique_ptr<std::uint16_t, FreeBlock> lutArray; ///< calculated table
    std::uint32_t lutEntries = 0;                       ///< of it, as of the last calculation
    unsigned char lutBits = 0;                          ///< it has room for 2^`lutBits` entries
    std::unique_ptr<std::uint32_t, FreeBlock> cdfArray; ///< distribution of a frame's values
    unsigned char cdfBits = 0;                          ///< it has room for 2^`cdfBits` entries
    const std::uint16_t* lastLutData = nullptr;         ///< table loaded last; only compared

    /// The converted pixels; kept, so that the SDK can use its memory again for each frame.
    FlyCapture2::Image convImage;
};

} // namespace KxPGrey

#endif
