// The plug-in's camera: the SDK's camera with named, range-checked and logged access to its
// properties.
#ifndef KX_PG_EXCAM_H
#define KX_PG_EXCAM_H

#include "kx_export.h"
#include "kx_gpio.h"
#include "kx_pg_io_pin.h"

#include <FlyCapture2.h>

#include <array>
#include <cstdint>
#include <optional>

#include <pthread.h>

namespace KxPGrey {

inline constexpr unsigned int kPropertyCount = 19;

/// One property: its name, and its ranges as soon as they have been asked for.
struct PropertyEntry {
    char name[32] = {};
    float absMin = 0;
    float absMax = 0;
    std::uint32_t relMin = 0;
    std::uint32_t relMax = 0;
    bool absRangeValid = false;
    bool relRangeValid = false;
};

/// Status of the property operations.
enum ExStatus : int {
    kExOk = 0,
    kExNoInfo = -1,      ///< the camera did not tell about the property
    kExAbsent = -2,      ///< the camera has no such property
    kExReadFailed = -3,  ///< reading failed
    kExWriteFailed = -4, ///< writing failed
    kExOutOfBounds = -5  ///< refused before the camera was asked to change anything
};

/// A camera of the SDK's with more to it. The property operations take any type number; the entry
/// that belongs to it is the number modulo 19. They belong to the grab thread, return an `ExStatus`
/// unless said otherwise, and report each SDK failure with one warning.
class CExCam : public FlyCapture2::Camera {
public:
    KX_API CExCam();
    KX_API ~CExCam() override;
    CExCam(const CExCam&) = delete;
    CExCam& operator=(const CExCam&) = delete;

    /// Current value in the property's unit; -1 when the SDK fails, the largest finite float when
    /// the camera has no such property.
    KX_API float ExPropertyGetAbs(FlyCapture2::PropertyType type);
    /// Range in the property's unit, asked from the camera once and then remembered. Either output
    /// may be null.
    KX_API int ExPropertyGetAbsRange(FlyCapture2::PropertyType type, float* min, float* max);
    /// Switches to manual absolute control and sets the value; a value out of range leaves the
    /// current one, and is no error.
    KX_API int ExPropertySetAbs(FlyCapture2::PropertyType type, float value);
    /// Range in the camera's raw units, remembered too. Either output may be null.
    KX_API int ExPropertyGetRelRange(FlyCapture2::PropertyType type, unsigned int* min,
                                     unsigned int* max);
    /// Current raw values. Either output may be null.
    KX_API int ExPropertyGetRel(FlyCapture2::PropertyType type, unsigned int* valA,
                                unsigned int* valB);
    /// Switches to manual relative control and sets the raw values; one out of range stays as it
    /// was.
    KX_API int ExPropertySetRel(FlyCapture2::PropertyType type, unsigned int valA,
                                unsigned int valB);
    /// Switches the property on or off. Returns `kExAbsent` on success too.
    KX_API int ExPropertySetEna(FlyCapture2::PropertyType type, bool on);
    /// Sets power, automatic mode and one-push together; the three below are its common cases.
    KX_API int ExPropertySetEnaAutoPush(FlyCapture2::PropertyType type, bool onOff, bool autoMode,
                                        bool onePush);
    KX_API int ExPropertySetAutoOff(FlyCapture2::PropertyType type);
    KX_API int ExPropertySetAutoOnce(FlyCapture2::PropertyType type);
    KX_API int ExPropertySetAutoCont(FlyCapture2::PropertyType type);
    /// Limits of automatic gain, in dB, into the camera's register: `kExOk`, `kExAbsent` no such
    /// register, or `kExOutOfBounds` of GAIN's range. A refused write stays unnoticed.
    KX_API int ExPropertySetAutoRangeGain(float minDb, float maxDb);
    /// Limits of automatic exposure, in microseconds; as for gain, with SHUTTER's range.
    KX_API int ExPropertySetAutoRangeExpo(float minUs, float maxUs);
    /// Target of the automatic functions: a level between 0 and 1, both excluded
    /// (`kExOutOfBounds`), one half for 0 EV. Switches AUTO_EXPOSURE to manual absolute control.
    KX_API int ExSetAutoExpoVal(float level);
    /// Switches AUTO_EXPOSURE on or off, in manual mode.
    KX_API int ExSetAutoExpoEna(bool on);
    /// The Bayer tile as four letters, first letter in the highest byte; 0 when it cannot be read.
    KX_API unsigned int ExGetBayerFormat();

    // ---- The pins. They belong to the control thread, none of them retries, and they report a
    // failure by what they return and at most one message. What the SDK says of a register access
    // is not looked at: a pin is there when its register says so.

    /// Mode that the pin is in (0 to 15; 1 = output), 255 when the pin is not there.
    KX_API unsigned int ExGetLineMode(pg_pins pin);
    /// Sets the pin's mode, and for an output its level. 0, -1 the pin is not there, or -2 not a
    /// mode from 0 to 4. What `ExSetLineBit` remembers of the pin stays as it is.
    KX_API int ExSetLineMode(pg_pins pin, unsigned int mode, bool level);
    /// Sets an output's level with a single register write; only the first call on a pin reads the
    /// register. 0, or -1 the pin is not there. A refused write stays unnoticed. No message.
    KX_API int ExSetLineBit(pg_pins pin, bool level);
    /// Samples the pin into `level`, which may be null. 0, or -1 the pin is not there. No message.
    KX_API int ExGetLineBit(pg_pins pin, bool* level);
    /// Switches the pin's strobe on or off. On: with this polarity, delay and duration in
    /// microseconds, of which 0xFFFFFFFF leaves what the camera has. 0, -1 `GetStrobeInfo` failed,
    /// -2 `GetStrobe` failed, -3 `SetStrobe` failed.
    KX_API int ExSetLineModeOutStrobe(pg_pins pin, bool onOff, bool polarity, unsigned int delayUs,
                                      unsigned int durationUs);

    // ---- Data on an output. The caller is blocked, and may be cancelled, until everything is on
    // the line. Half periods count from 1000 us on, shorter ones are stretched.

    /// Sends `count` periods of a square wave, though at least one transition, low or high first,
    /// with a pause of `halfPeriodUs` after each transition. 0, or -1 as soon as a transition
    /// cannot be written.
    KX_API int ExSendLineMeander(pg_pins pin, unsigned int count, unsigned int halfPeriodUs,
                                 bool startLow);
    /// Sends the lower `bits` bits of `data` (1 to 32) in the line code of kx_pg_line_code.h, with
    /// or without the parity symbol, on a line that rests high or low. `halfPeriodUs` is at most
    /// 100 s. 0 the whole frame is sent, or -1: not 1 to 32 bits (nothing is sent), or a transition
    /// could not be written (the line stays at the level it has then).
    KX_API int ExSendLineCmdBy2bits(pg_pins pin, unsigned int data, unsigned char bits,
                                    unsigned int halfPeriodUs, bool idleHigh, bool withParity);

    // ---- Lines of the I/O box. Records, exposure time and the flags that say so are shared by
    // grab thread and control thread, through kx_pg_shared.h; only a word's one writer may also
    // read it plainly.

    /// The pins as they are, and each as it was before it was configured last.
    std::array<IoPinState, kPgPinCount> ioPinState;
    std::array<IoPinState, kPgPinCount> ioPinSaved;
    /// Exposure time in force, in microseconds. Written by the grab thread.
    std::uint32_t expoTimeUs = 0;

    // The control thread, as the thread that starts and stops it knows it; none when it could not
    // be created.
    std::optional<pthread_t> ctrlThread;
    bool ctrlThreadStarted = false;
    bool ctrlThreadRunning = false; ///< shared; raised and lowered by the control thread
    bool ctrlThreadStop = false;    ///< shared; raised to end the thread, which lowers it

    /// The command in flight, all ones = none. Control thread, as the next two.
    std::uint32_t lineCmdActive = kIoNone;
    bool lineCmdSent = false;  ///< it is on the line, only its reply may be missing
    bool ioDataActive = false; ///< there is line data to send or to receive
    /// Shared: raised when changed records wait for the control thread, which lowers it.
    bool ioCfgPending = false;
    /// The pin that takes the reply, all ones = none. Control thread.
    std::uint32_t rxPinIndex = kIoNone;
    /// Shared: word received on a line, and its number of bits (0 = none), which the control thread
    /// writes first. The grab loop exports and clears them.
    std::uint32_t rxData = 0;
    std::uint32_t rxBits = 0;
    /// This camera's properties, by type.
    std::array<PropertyEntry, kPropertyCount> propNames;
    /// What `ExSetLineBit` last wrote to each pin's register; all ones = unknown.
    std::array<std::uint32_t, kPgPinCount> gpioCtrlShadow;

private:
    PropertyEntry& entryOf(FlyCapture2::PropertyType type);
    int readProperty(const char* caller, FlyCapture2::PropertyType type,
                     FlyCapture2::PropertyInfo& info, FlyCapture2::Property& property);
    int writeProperty(const char* caller, FlyCapture2::PropertyType type,
                      const FlyCapture2::Property& property);
};

} // namespace KxPGrey

#endif
