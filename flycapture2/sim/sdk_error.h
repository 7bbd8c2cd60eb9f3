// How the simulation makes the SDK's error values.
#ifndef FCSIM_SDK_ERROR_H
#define FCSIM_SDK_ERROR_H

#include <FlyCapture2.h>

#include <source_location>
#include <string>

namespace fcsim {

/// Success. Allocates nothing.
inline FlyCapture2::Error success()
{
    return {};
}

/// A failure: `description` is what `GetDescription` gives. REQUIRES: `type` is not PGRERROR_OK.
FlyCapture2::Error makeError(FlyCapture2::ErrorType type, std::string description,
                             std::source_location where = std::source_location::current());

/// The answer of all operations that the simulation leaves out.
FlyCapture2::Error notImplemented();

} // namespace fcsim

#endif
