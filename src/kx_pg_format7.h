// What the camera says about its Format7 image, for callers that do without it when it does not
// tell.
#ifndef KX_PG_FORMAT7_H
#define KX_PG_FORMAT7_H

#include "kx_pg_excam.h"

#include <FlyCapture2.h>

namespace KxPGrey {

/// Limits of mode 0 and the settings in force.
struct Format7State {
    FlyCapture2::Format7Info info;
    FlyCapture2::Format7ImageSettings settings;
};

/// Asks for the settings in force; all zero when the camera does not tell.
FlyCapture2::Format7ImageSettings readFormat7Settings(CExCam& cam);

/// Asks for the limits, then for the settings; both all zero when the camera does not tell.
Format7State readFormat7State(CExCam& cam);

} // namespace KxPGrey

#endif
