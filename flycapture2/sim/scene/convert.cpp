// Whole pictures from one pixel format to another.
#include "scene/convert.h"

#include "scene/pixel_bayer.h"
#include "scene/pixel_codec.h"
#include "scene/pixel_format.h"

#include <array>
#include <cstring>

namespace fcsim {

namespace {

/// Rows kept between calls, so that converting a stream of pictures allocates nothing.
struct Workspace {
    std::array<Row, 3> decoded; ///< of a mosaic: row y at y % 3
    Row colour;
    Row inSpace;
};

Workspace& workspace()
{
    thread_local Workspace rows;
    return rows;
}

const Level* decodeRow(const PictureShape& source, const std::uint8_t* pixels,
                       const PixelCodec& codec, unsigned y, Row& row)
{
    row.reset(codec.space, source.cols);
    codec.decode(pixels + std::size_t{source.stride} * y, source.cols, row);
    return row.plane(0);
}

/// Decodes a mosaic row by row, three rows in hand, and hands the colours to `use(y, row)`.
template <class Use>
void demosaicPicture(const PictureShape& source, const std::uint8_t* pixels,
                     const PixelCodec& codec, Demosaic method, Use use)
{
    Workspace& rows = workspace();
    const auto load = [&](unsigned y) { decodeRow(source, pixels, codec, y, rows.decoded[y % 3]); };
    const auto rowAt = [&](unsigned y) { return rows.decoded[y % 3].plane(0); };
    load(0);
    for (unsigned y = 0; y < source.rows; ++y) {
        if (y + 1 < source.rows) {
            load(y + 1);
        }
        const unsigned above = y == 0 ? 1 : y - 1;
        const unsigned below = y + 1 == source.rows ? y - 1 : y + 1;
        demosaicRow({rowAt(above), rowAt(y), rowAt(below)}, source.cols, source.tile, y, method,
                    rows.colour);
        use(y, rows.colour.view());
    }
}

bool needsColour(const PictureShape& source, FlyCapture2::PixelFormat target,
                 FlyCapture2::ColorProcessingAlgorithm algorithm)
{
    return isRawFormat(source.format) && source.tile != FlyCapture2::NONE && source.rows >= 2 &&
           source.cols >= 2 && algorithm != FlyCapture2::NO_COLOR_PROCESSING &&
           !keepsMosaic(source, target);
}

std::string refusal(const PictureShape& source, FlyCapture2::PixelFormat target,
                    const std::string& reason)
{
    return std::string("Cannot convert ") + pixelFormatName(source.format) + " to " +
           pixelFormatName(target) + ": " + reason;
}

} // namespace

std::string conversionObstacle(const PictureShape& source, FlyCapture2::PixelFormat target)
{
    if (findPixelCodec(source.format) == nullptr || findPixelCodec(target) == nullptr) {
        return refusal(source, target, "this pair of pixel formats is not supported");
    }
    if (source.rows == 0 || source.cols == 0) {
        return refusal(source, target, "the image is empty");
    }
    for (const FlyCapture2::PixelFormat format : {source.format, target}) {
        const unsigned group = findPixelLayout(format)->pixelsPerGroup;
        if (source.cols % group != 0) {
            return refusal(source, target,
                           "a width of " + std::to_string(source.cols) + " is not a multiple of " +
                               std::to_string(group) + " pixels");
        }
    }
    return {};
}

bool keepsMosaic(const PictureShape& source, FlyCapture2::PixelFormat target)
{
    return isRawFormat(source.format) && isRawFormat(target);
}

void convertPicture(const PictureShape& source, const std::uint8_t* pixels,
                    FlyCapture2::PixelFormat target,
                    FlyCapture2::ColorProcessingAlgorithm algorithm, std::uint8_t* out)
{
    const std::size_t rowSize = packedRowSize(target, source.cols);
    if (source.format == target) {
        for (unsigned y = 0; y < source.rows; ++y) {
            std::memcpy(out + y * rowSize, pixels + std::size_t{source.stride} * y, rowSize);
        }
        return;
    }
    const PixelCodec& from = *findPixelCodec(source.format);
    const PixelCodec& to = *findPixelCodec(target);
    Workspace& rows = workspace();
    const auto emit = [&](unsigned y, const RowView& row) {
        to.encode(rowInSpace(row, to.space, rows.inSpace), out + y * rowSize);
    };
    if (needsColour(source, target, algorithm)) {
        const Demosaic method =
            algorithm == FlyCapture2::NEAREST_NEIGHBOR ? Demosaic::nearest : Demosaic::bilinear;
        demosaicPicture(source, pixels, from, method, emit);
        return;
    }
    for (unsigned y = 0; y < source.rows; ++y) {
        decodeRow(source, pixels, from, y, rows.decoded[0]);
        emit(y, rows.decoded[0].view());
    }
}

} // namespace fcsim
