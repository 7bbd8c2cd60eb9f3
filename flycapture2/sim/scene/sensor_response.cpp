// What the camera makes of the light on a row of pixels, step by step up to levels to pack.
#include "scene/sensor_response.h"

#include "scene/pixel_bayer.h"
#include "scene/pixel_codec.h"
#include "scene/sensor_sharpness.h"

#include <algorithm>
#include <utility>

namespace fcsim {

SensorResponse::SensorResponse(const SceneSettings& scene, const SensorSettings& sensor)
    : scene_(scene), sensor_(sensor)
{}

void SensorResponse::begin(const FrameRequest& request)
{
    const SensorState& state = request.state;
    raw_ = isRawFormat(request.format);
    coloured_ = findPixelCodec(request.format)->space != Space::grey;
    exposure_ = makeExposureChain(scene_, sensor_, state);
    noise_ = FrameNoise(sensor_.noiseSeed, request.number);
    balance_ = balanceOf(state);
    turn_ = colourTurnOf(state);
    sharpness_ = sharpnessStrength(state.sharpness);
    tone_.set(state);
}

bool SensorResponse::pointwise() const
{
    return !sensor_.noise && !sharpens();
}

RowView SensorResponse::meter(const RowView& light, int x, int y)
{
    expose(light, x, y, nullptr);
    return rowInSpace(levels_.view(), Space::grey, grey_);
}

RowView SensorResponse::develop(const Canvas& light, int x, int y, int width)
{
    // Sharpening looks at the neighbours, also at those outside of the region.
    const int margin = sharpens() ? 1 : 0;
    const int from = std::max(x - margin, 0);
    const int to = std::min(x + width + margin, light.bounds().right());
    expose(light.row(from, y, to - from), from, y, sensor_.noise ? &noise_ : nullptr);
    Row& row = processed();
    RowView pixels = row.view();
    pixels.width = static_cast<unsigned>(width);
    for (unsigned plane = 0; plane < planeCount(pixels.space); ++plane) {
        Level* levels = row.plane(plane) + (x - from);
        tone_.apply(plane, levels, pixels.width);
        pixels.plane[plane] = levels;
    }
    return pixels;
}

/// Fills `levels_`.
void SensorResponse::expose(const RowView& light, int x, int y, const FrameNoise* noise)
{
    RowView seen = light;
    if (mosaic() && light.space == Space::rgb) {
        mosaicRow(light, sensor_.tile, static_cast<unsigned>(x), static_cast<unsigned>(y), mosaic_);
        seen = mosaic_.view();
    }
    levels_.reset(seen.space, seen.width);
    for (unsigned plane = 0; plane < planeCount(seen.space); ++plane) {
        exposeRow(seen.plane[plane], seen.width, exposure_,
                  noise == nullptr ? nullptr : noise->row(plane, x, y), levels_.plane(plane));
    }
    balance(x, y);
}

/// White balance of `levels_`, whose first pixel is (x, y).
void SensorResponse::balance(int x, int y)
{
    const RowView row = levels_.view();
    if (row.space == Space::rgb) {
        for (unsigned plane = 0; plane < 3; ++plane) {
            balanceRow(levels_.plane(plane), row.width, balance_[plane], balance_[plane]);
        }
    } else if (mosaic()) {
        const auto left = static_cast<unsigned>(x);
        const auto top = static_cast<unsigned>(y);
        balanceRow(levels_.plane(0), row.width, balance_[bayerPlane(sensor_.tile, left, top)],
                   balance_[bayerPlane(sensor_.tile, left + 1, top)]);
    }
}

/// `levels_` after the steps between white balance and tone curve.
Row& SensorResponse::processed()
{
    Row* row = &levels_;
    const RowView pixels = levels_.view();
    if (pixels.space == Space::rgb && !coloured_) {
        rowInSpace(pixels, Space::grey, grey_);
        row = &grey_;
    } else if (pixels.space == Space::rgb && !turn_.neutral()) {
        turnColours(levels_, pixels.width, turn_);
    }
    if (!sharpens()) {
        return *row;
    }
    const RowView soft = row->view();
    sharp_.reset(soft.space, soft.width);
    for (unsigned plane = 0; plane < planeCount(soft.space); ++plane) {
        sharpenRow(soft.plane[plane], soft.width, sharpness_, sharp_.plane(plane));
    }
    return sharp_;
}

} // namespace fcsim
