// PNG files as pictures of 16-bit levels.
#include "scene/scene_png.h"

#include "scene/renderer.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace fcsim {

namespace {

constexpr int kSignatureSize = 8;

/// A PNG file that is being read. Errors of libpng arrive as `SceneError`.
///
/// libpng leaves its functions through longjmp. So each member function that calls it sets the
/// landing first and holds nothing that would need a destructor.
class PngReader {
public:
    explicit PngReader(const std::filesystem::path& path) : path_(path), file_(open(path))
    {
        std::array<png_byte, kSignatureSize> signature{};
        if (std::fread(signature.data(), 1, signature.size(), file_.get()) != signature.size() ||
            png_sig_cmp(signature.data(), 0, signature.size()) != 0) {
            fail("not a PNG file");
        }
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, keepMessage, ignoreWarning);
        info_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
        if (info_ == nullptr) {
            png_destroy_read_struct(&png_, nullptr, nullptr);
            throw std::bad_alloc();
        }
    }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;
    ~PngReader() { png_destroy_read_struct(&png_, &info_, nullptr); }

    void readHead()
    {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            fail(message_.data());
        }
        png_init_io(png_, file_.get());
        png_set_sig_bytes(png_, kSignatureSize);
        png_read_info(png_, info_);
    }

    /// Asks for grey or RGB samples of 8 or 16 bits. REQUIRES: `readHead`.
    void simplify()
    {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            fail(message_.data());
        }
        png_set_expand(png_);
        png_set_strip_alpha(png_);
        png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
    }

    /// Reads the picture to `rows`, one pointer per row. REQUIRES: `simplify`.
    void readRows(png_byte** rows)
    {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            fail(message_.data());
        }
        png_read_image(png_, rows);
    }

    /// Looks for the chunk that ends a PNG file. Ends the reading: for files that are only checked.
    void checkTail()
    {
        std::array<char, 1024> tail{};
        std::fseek(file_.get(), 0, SEEK_END);
        const long size = std::ftell(file_.get());
        std::fseek(file_.get(), std::max(0L, size - static_cast<long>(tail.size())), SEEK_SET);
        const std::size_t read = std::fread(tail.data(), 1, tail.size(), file_.get());
        if (std::string_view(tail.data(), read).find("IEND") == std::string_view::npos) {
            fail("the file is cut off");
        }
    }

    unsigned width() const { return png_get_image_width(png_, info_); }
    unsigned height() const { return png_get_image_height(png_, info_); }
    unsigned channels() const { return png_get_channels(png_, info_); }
    unsigned bytesPerSample() const { return png_get_bit_depth(png_, info_) / 8U; }

private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    using File = std::unique_ptr<std::FILE, CloseFile>;

    static File open(const std::filesystem::path& path)
    {
        File file(std::fopen(path.c_str(), "rb"));
        if (file == nullptr) {
            throw SceneError("Cannot read picture " + path.string() + ": " + std::strerror(errno));
        }
        return file;
    }

    [[noreturn]] static void keepMessage(png_struct* png, const char* message)
    {
        auto* reader = static_cast<PngReader*>(png_get_error_ptr(png));
        std::snprintf(reader->message_.data(), reader->message_.size(), "%s", message);
        png_longjmp(png, 1);
    }
    static void ignoreWarning(png_struct* /*png*/, const char* /*message*/) {}

    [[noreturn]] void fail(const char* reason) const
    {
        throw SceneError("Cannot read picture " + path_.string() + ": " + reason);
    }

    const std::filesystem::path& path_;
    File file_;
    png_struct* png_ = nullptr;
    png_info* info_ = nullptr;
    std::array<char, 128> message_{};
};

/// Takes one row of big-endian samples apart into the canvas's planes.
void splitRow(const png_byte* samples, std::size_t bytesPerSample, unsigned width, Canvas& canvas,
              int y)
{
    const unsigned planes = planeCount(canvas.space());
    const std::size_t bytesPerPixel = planes * bytesPerSample;
    for (unsigned plane = 0; plane < planes; ++plane, samples += bytesPerSample) {
        Level* level = canvas.plane(plane, y);
        const png_byte* sample = samples;
        for (unsigned x = 0; x < width; ++x, sample += bytesPerPixel) {
            level[x] = static_cast<Level>(sample[0] << 8 | (bytesPerSample == 2 ? sample[1] : 0));
        }
    }
}

} // namespace

void checkPng(const std::filesystem::path& path)
{
    PngReader reader(path);
    reader.readHead();
    reader.checkTail();
}

Canvas readPng(const std::filesystem::path& path)
{
    PngReader reader(path);
    reader.readHead();
    reader.simplify();
    const std::size_t rowSize =
        std::size_t{reader.width()} * reader.channels() * reader.bytesPerSample();
    std::vector<png_byte> samples(rowSize * reader.height());
    std::vector<png_byte*> rows(reader.height());
    for (std::size_t y = 0; y < rows.size(); ++y) {
        rows[y] = samples.data() + y * rowSize;
    }
    reader.readRows(rows.data());
    Canvas canvas(static_cast<int>(reader.width()), static_cast<int>(reader.height()),
                  reader.channels() == 1 ? Space::grey : Space::rgb);
    for (std::size_t y = 0; y < rows.size(); ++y) {
        splitRow(rows[y], reader.bytesPerSample(), reader.width(), canvas, static_cast<int>(y));
    }
    return canvas;
}

} // namespace fcsim
