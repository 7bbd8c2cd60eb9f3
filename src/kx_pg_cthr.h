// The control thread: line data and strobes of the I/O box, beside the grab loop.
#ifndef KX_PG_CTHR_H
#define KX_PG_CTHR_H

#include "kx_export.h"
#include "kx_pg_excam.h"

namespace KxPGrey {

/// Runs one real-time thread for a camera, from `CtrlThreadStart` to its own destruction. All of
/// the thread's state is in the camera, which has to live longer.
class CCamCtrlThread {
public:
    KX_API CCamCtrlThread();
    /// Stops the thread, if there is one, and waits for its end; one that does not stop within
    /// 0.4 s is cancelled. The thread that started it.
    KX_API ~CCamCtrlThread();
    CCamCtrlThread(const CCamCtrlThread&) = delete;
    CCamCtrlThread& operator=(const CCamCtrlThread&) = delete;

    /// Puts the camera's thread state to its initial values and starts the thread, at real-time
    /// priority 98. Where that is not allowed there is no thread: configured lines stay as they
    /// are, and all else goes on. Not thread-safe; once per object.
    KX_API void CtrlThreadStart(CExCam* camera);
    /// The thread's body, for a `CExCam`. Ends when it is told to, or when the camera is gone.
    /// Returns null. Leaves by unwinding when the thread is cancelled.
    KX_API static void* CtrlThreadFunc(void* camera);

    /// Applies the changed pin records to the camera. Returns false when a command had to be
    /// refused, as the one before is still being sent: it is to be tried again. Control thread.
    KX_API static bool DoGpioCfg(CExCam* camera);
    /// One pass over the lines that carry data: sends what is queued (which blocks for the whole
    /// word), takes one sample of a reply. Returns true when no line needs another pass. Control
    /// thread.
    KX_API static bool DoGpioProc(CExCam* camera);
    /// Makes the pin an output that sends the 10 bits of 914, for trying out an I/O box.
    /// REQUIRES: the pin is free and no configuration is pending. Always 0.
    KX_API static int ConfigureLineUserOutput(CExCam* camera, pg_pins pin, unsigned char inv);

private:
    CExCam* cam_ = nullptr;
};

} // namespace KxPGrey

#endif
