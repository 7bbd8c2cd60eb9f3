// What the camera says about its Format7 image, for callers that do without it when it does not
// tell.
#include "kx_pg_format7.h"

namespace KxPGrey {

FlyCapture2::Format7ImageSettings readFormat7Settings(CExCam& cam)
{
    FlyCapture2::Format7ImageSettings settings = {};
    unsigned int packetSize = 0;
    float percentage = 0;
    static_cast<void>(cam.GetFormat7Configuration(&settings, &packetSize, &percentage));
    return settings;
}

Format7State readFormat7State(CExCam& cam)
{
    Format7State state = {};
    bool supported = false;
    static_cast<void>(cam.GetFormat7Info(&state.info, &supported));
    state.settings = readFormat7Settings(cam);
    return state;
}

} // namespace KxPGrey
