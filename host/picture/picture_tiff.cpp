// Pictures as TIFF.
#include "picture/picture_encode.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <exception>

namespace kxhost {

namespace {

/// A file in memory, as the library's callbacks see it.
struct MemoryFile {
    std::vector<std::uint8_t>& bytes;
    std::size_t position = 0;
};

MemoryFile& fileOf(thandle_t handle)
{
    return *static_cast<MemoryFile*>(handle);
}

tmsize_t readMemory(thandle_t handle, void* to, tmsize_t size)
{
    MemoryFile& file = fileOf(handle);
    const std::size_t left = file.bytes.size() - std::min(file.position, file.bytes.size());
    const std::size_t count = std::min(left, static_cast<std::size_t>(size));
    std::memcpy(to, file.bytes.data() + file.position, count);
    file.position += count;
    return static_cast<tmsize_t>(count);
}

tmsize_t writeMemory(thandle_t handle, void* from, tmsize_t size)
{
    MemoryFile& file = fileOf(handle);
    const auto count = static_cast<std::size_t>(size);
    try {
        file.bytes.resize(std::max(file.bytes.size(), file.position + count));
    } catch (const std::exception&) {
        return 0;
    }
    std::memcpy(file.bytes.data() + file.position, from, count);
    file.position += count;
    return size;
}

toff_t seekMemory(thandle_t handle, toff_t offset, int whence)
{
    MemoryFile& file = fileOf(handle);
    const std::size_t base = whence == SEEK_SET   ? 0
                             : whence == SEEK_CUR ? file.position
                                                  : file.bytes.size();
    file.position = base + offset;
    return file.position;
}

int closeMemory(thandle_t)
{
    return 0;
}

toff_t sizeOfMemory(thandle_t handle)
{
    return fileOf(handle).bytes.size();
}

bool writeTags(TIFF* tiff, const Picture& picture)
{
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, picture.width) == 1 &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, picture.height) == 1 &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, picture.bitDepth) == 1 &&
           TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, picture.channels) == 1 &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                        picture.channels == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK) == 1 &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == 1 &&
           TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE) == 1 &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, picture.height) == 1;
}

bool writePicture(TIFF* tiff, const Picture& picture)
{
    if (!writeTags(tiff, picture)) {
        return false;
    }
    // The library's interface is not const-correct; it does not change the samples of a file in the
    // machine's own byte order.
    auto* samples = const_cast<std::uint8_t*>(picture.bytes.data()); // NOLINT
    const auto size = static_cast<tmsize_t>(picture.bytes.size());
    return TIFFWriteEncodedStrip(tiff, 0, samples, size) == size && TIFFFlush(tiff) == 1;
}

} // namespace

std::string encodeTiff(const Picture& picture, std::vector<std::uint8_t>& file)
{
    file.clear();
    MemoryFile memory{file};
    TIFF* tiff = TIFFClientOpen("picture", "w", &memory, readMemory, writeMemory, seekMemory,
                                closeMemory, sizeOfMemory, nullptr, nullptr);
    if (tiff == nullptr) {
        return "no memory for the encoder";
    }
    const bool written = writePicture(tiff, picture);
    TIFFClose(tiff);
    return written ? "" : "the TIFF library could not encode the picture";
}

} // namespace kxhost
