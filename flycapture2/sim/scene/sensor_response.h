// What the camera makes of the light on a row of pixels, step by step up to levels to pack.
//
// Every frame: exposure, noise, gain and black level (sensor_exposure.h), white balance.
// Formats with processed colour: saturation and hue.  All but RAW formats: sharpness.
// Every frame: gamma and look-up table.
#ifndef FCSIM_SENSOR_RESPONSE_H
#define FCSIM_SENSOR_RESPONSE_H

#include "scene/renderer.h"
#include "scene/scene_canvas.h"
#include "scene/sensor_colour.h"
#include "scene/sensor_exposure.h"
#include "scene/sensor_noise.h"
#include "scene/sensor_tone.h"

namespace fcsim {

/// Develops the rows of one frame after the other. Not thread-safe.
class SensorResponse {
public:
    SensorResponse(const SceneSettings& scene, const SensorSettings& sensor);

    /// Makes ready for rows of this frame; no allocation.
    void begin(const FrameRequest& request);
    /// True when pixels of this frame depend on the light on them alone: neither on their
    /// neighbours nor on the frame's number.
    bool pointwise() const;
    /// Grey levels (luma of colours) after the white balance, without noise, of light that falls on
    /// the pixels from (x, y) on. Valid until the next row. Allocates as `develop`.
    RowView meter(const RowView& light, int x, int y);
    /// `width` pixels from (x, y), ready for the format but for its colour space. Valid until the
    /// next row. Allocates when a row is longer than those before.
    RowView develop(const Canvas& light, int x, int y, int width);

private:
    void expose(const RowView& light, int x, int y, const FrameNoise* noise);
    void balance(int x, int y);
    bool mosaic() const { return raw_ && sensor_.tile != FlyCapture2::NONE; }
    bool sharpens() const { return !raw_ && sharpness_ != 0; }
    Row& processed();

    SceneSettings scene_;
    SensorSettings sensor_;

    // The frame.
    bool raw_ = false;
    bool coloured_ = false; ///< the format has colour
    ExposureChain exposure_;
    FrameNoise noise_{0, 0};
    std::array<float, 3> balance_{1, 1, 1};
    ColourTurn turn_;
    float sharpness_ = 0; ///< strength
    ToneCurve tone_;

    // The row.
    Row mosaic_;
    Row levels_;
    Row grey_;
    Row sharp_;
};

} // namespace fcsim

#endif
