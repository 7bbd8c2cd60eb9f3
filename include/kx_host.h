// The host services: the plain functions that the process which loads the plug-in exports.
//
// All of them have unmangled names and are resolved when the plug-in is loaded; a host that lacks
// one cannot load it. Unless a function says otherwise it is called from the grab thread only, that
// is, the thread that called `KxLibProc`. Strings and tables stay owned by the host. A function may
// throw only what its caller is prepared for: inside the grab loop, exceptions derived from
// std::exception end the grab.
#ifndef KX_HOST_H
#define KX_HOST_H

#include <stdint.h> // NOLINT(modernize-deprecated-headers): C hosts include this file
#include <sys/time.h>

#ifdef __cplusplus
extern "C" {
#endif

// ---- Configuration getters. The value 0xFFFFFFFF (-1) means "keep what the camera has" unless a
// ---- getter names another sentinel. They are read anew at every configuration pass.

/// Camera model to use, compared as a prefix of the camera's model name; null = no model
/// configured.
const char* KxGiMainCtx__GetModelStr(void);
/// Serial number as text in decimal, 0x hexadecimal or 0 octal; null or empty = any.
const char* KxGiMainCtx__GetIdStr(void);
/// Bit i set: the camera at bus index i may be used whatever its model and serial number.
uint32_t KxGiMainCtx__GetActiveCamMask(void);
/// GigE packet size in bytes; 1 to 9000, anything else stands for 1500.
uint32_t KxGiMainCtx__GetDatachunk(void);
/// Number of frame buffers.
uint32_t KxGiMainCtx__GetBnum(void);
/// Number of frames to retrieve; 0 = no limit.
uint32_t KxGiMainCtx__GetFnum(void);
/// Region of interest in pixels.
uint32_t KxGiMainCtx__GetWidth(void);
uint32_t KxGiMainCtx__GetHeight(void);
uint32_t KxGiMainCtx__GetOffsetX(void);
uint32_t KxGiMainCtx__GetOffsetY(void);
/// Output pixel format code: 1 MONO8T, 2 MONO12PT, 3 MONO12T, 4 YUV411PT, 5 YUV422PT, 9 Bayer8T.
uint8_t KxGiMainCtx__GetFormat(void);
/// Changes the host's output pixel format code; the plug-in passes 1 or 2.
void KxGiMainCtx__SetFormat(int code);
/// Pixel format code that frames are converted to; 0 = no conversion.
uint8_t KxGiMainCtx__GetCformat(void);
/// Frame rate in frames per second; -1 = keep.
float KxGiMainCtx__GetFps(void);
/// Manual gain in dB; -100 = keep.
float KxGiMainCtx__GetGainMan(void);
/// Manual exposure time in microseconds; -1 = keep.
float KxGiMainCtx__GetExptMan(void);
/// Gamma; -1 = keep, 1 switches the camera's gamma off.
float KxGiMainCtx__GetGamma(void);
/// Saturation in the camera's units (percent); -1 = keep.
int32_t KxGiMainCtx__GetSatur(void);
/// White balance in the camera's relative units; -1 = keep.
int32_t KxGiMainCtx__GetWbred(void);
int32_t KxGiMainCtx__GetWbblu(void);
/// Rotation: 0 = keep, 2 = rotate in software, any other value = do not.
int32_t KxGiMainCtx__GetRotate(void);
/// Target brightness of the automatic functions; -1 = keep.
float KxGiMainCtx__GetAtbright(void);
/// Limits of automatic gain in dB; a low limit of -100 = keep both.
float KxGiMainCtx__GetGainlimsLow(void);
float KxGiMainCtx__GetGainlimsHigh(void);
/// Limits of automatic exposure in microseconds; a low limit of -1 = keep both.
float KxGiMainCtx__GetEtlimsLow(void);
float KxGiMainCtx__GetEtlimsHigh(void);
/// Profile of the automatic functions (1 = switch auto exposure on) and the modes of gain, exposure
/// time and look-up table: 0 = keep, 1 = manual, 2 = automatic.
int32_t KxGiMainCtx__GetSweepProf(void);
int32_t KxGiMainCtx__GetSweepGainMod(void);
int32_t KxGiMainCtx__GetSweepEtimeMod(void);
int32_t KxGiMainCtx__GetSweepLutMod(void);
/// Correction of the camera clock in nanoseconds per second; 0 = time stamps from the host's clock.
int32_t KxGiMainCtx__GetTsadjns(void);
/// Bit width of the configured look-up table's values.
uint16_t KxGiMainCtx__GetLutBitSize(void);
/// The configured look-up table: 512 entries, null = none.
const uint16_t* KxGiMainCtx__GetLutDataU16(void);
/// Number of IoBox pin settings, and the fields of setting `set` (0 based), as in kx_iobox.h.
uint32_t KxGiMainCtx__GetIoboxNum(void);
int32_t KxGiMainCtx__GetIoboxPin(int set);
int32_t KxGiMainCtx__GetIoboxMod(int set);
int32_t KxGiMainCtx__GetIoboxInv(int set);
int32_t KxGiMainCtx__GetIoboxSrc(int set);
/// Parameter `which` (0 or 1) of IoBox setting number `set`; kx_iobox.h says what it is.
int32_t KxGiMainCtx__GetIoboxPar(int set, int which);

// ---- Host control.

/// Reads the host's configuration anew. `restart` receives non-zero when the new configuration
/// needs a new start of the grab. Returns 0 = in force, other = refused and the old one stays.
int KxGi__DoReconfig(int* restart);
/// Non-zero: the host holds a changed configuration that can be applied without stopping capture.
int KxGi__CheckDynConfig(void);
/// Called together in this order when the configuration that was in use is done with.
void KxGi__SetNewCfgVendor(void);
void KxGi__SetNewCfgPlugin(void);
/// Reports what has been done about a signal: the signal's code.
void KxGi__SetSignalAction(int action);
/// From the first call on, termination signals are kept for `KxUtl__CheckSignal`; from the second
/// on they end the process again.
void KxGi__ResetTermSigProc(void);
void KxGi__SetTermSigProc(void);
/// The frame period in force, in microseconds.
void KxGi__SetCurrFpsUs(uint32_t periodUs);
/// A frame of this size in pixels has arrived; temperature in degrees Celsius, -321 = not known.
void KxGi__HaltStop(int width, int height, float temperatureC);
/// A frame is missing; temperature as above.
void KxGi__HaltUpdate(int width, float temperatureC);
/// The predicted start of the next frame's exposure on the host's clock, so that other grabbers can
/// be triggered in step; all three in microseconds.
void KxGi__CommTriggerAll(uint64_t timestampUs, uint32_t offsetUs, int32_t exposureUs);
/// Adds up the distribution of a frame's pixel values into `cdf` (2^bitsPerPixel entries). `pitch`
/// is the line's length in pixels.
void KxGi__CalcLutDynam(const void* pixels, uint32_t width, uint32_t height, uint32_t pitch,
                        uint32_t bitsPerPixel, uint32_t* cdf);
/// Computes a look-up table of 2^outputBits entries from a distribution.
void KxGi__GetLutDynam(uint32_t outputBits, const uint32_t* cdf, uint32_t inputBits, uint16_t* lut);

// ---- Frame memory: one plain pool, or numbered instances (0 = raw frames, 1 = converted frames).

/// Creates the plain pool with `count` buffers; the second argument is always 0.
void KxGiMem__Init(uint32_t count, int zero);
/// Size of one frame of the plain pool in bytes.
void KxGiMem__SetActFsize(uint32_t bytes);
/// Address of buffer `index`; null = there is none.
void* KxGiMem__GetBufPtr(uint32_t index);
/// Non-zero: the camera's driver may fill the pool's buffers directly.
int KxGiMem__IsFactoryUsed(void);
/// The same for one instance.
void KxGiMemInst__Init(int instance, uint32_t count, int zero);
void KxGiMemInst__SetActFsize(int instance, uint32_t bytes);
/// Hands a finished frame over. The pixels are valid during the call; a host that wants them longer
/// copies them. `store` is the session's store flag. Returns 0 = accepted, other = refused (the
/// frame is then not exported).
int KxGiMemInst__Trigger(int instance, int zero, uint64_t timestampUs, void* frame, int store);

// ---- Export of the scenario parameters (kx_scenario.h).

/// Publishes a value for the exports to come. The pointer stays valid for the life of the session.
void KxSc__SetParamVal(int id, const void* value);
/// The same for one memory instance.
void KxSc__InstSetParamVal(int instance, int id, const void* value);
/// Exports the published values for the frame with this time stamp (microseconds, host clock).
void KxSc__ProcExport(uint64_t timestampUs);

// ---- Utilities.

/// Pending signal: 0 none, 1 and 5 finish, 2 reconfigure, 3 look-up table, 4 12-bit look-up table.
int KxUtl__CheckSignal(void);
/// Difference of two times; the result belongs to the host and lives until the calling thread's
/// next call. May be called from two threads at once.
struct timeval* KxUtl__TimeValDiff(const struct timeval* later, const struct timeval* earlier);
/// The grab's state; 4 = capturing.
void KxUtl__UpdateGrabState(int state);

#ifdef __cplusplus
}
#endif

#endif
