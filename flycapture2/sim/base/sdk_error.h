// How the simulation makes the SDK's error values.
#ifndef FCSIM_SDK_ERROR_H
#define FCSIM_SDK_ERROR_H

#include <FlyCapture2.h>

#include <string>

namespace fcsim {

/// Success. Allocates nothing.
inline FlyCapture2::Error success()
{
    return {};
}

/// A failure: `description` is what `GetDescription` gives, `file` (lives for ever) and `line`
/// where it was found. REQUIRES: `type` is not PGRERROR_OK.
FlyCapture2::Error makeError(FlyCapture2::ErrorType type, std::string description,
                             const char* file = __builtin_FILE(), unsigned line = __builtin_LINE());

/// The answer of all operations that the simulation leaves out.
FlyCapture2::Error notImplemented();

} // namespace fcsim

#endif
