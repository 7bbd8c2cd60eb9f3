// PNG pictures as scene, one per frame, played in a loop.
#include "scene/scene_pictures.h"

#include "scene/scene_png.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <string>

namespace fcsim {

namespace {

constexpr std::size_t kKeepBytes = std::size_t{1} << 30;

bool isPngName(const std::filesystem::path& path)
{
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension == ".png";
}

std::vector<std::filesystem::path> listPictures(const std::filesystem::path& path)
{
    std::error_code error;
    if (!std::filesystem::is_directory(path, error)) {
        return {path};
    }
    std::vector<std::filesystem::path> files;
    for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end;
         entry.increment(error)) {
        if (isPngName(entry->path())) {
            files.push_back(entry->path());
        }
    }
    if (error) {
        throw SceneError("Cannot read folder " + path.string() + ": " + error.message());
    }
    if (files.empty()) {
        throw SceneError("Folder " + path.string() + " holds no PNG pictures (*.png)");
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// A span of a picture's pixels that falls on one pixel of the sensor.
struct Span {
    int begin;
    int end;
};

/// Scaling along one axis: the sensor sees `seen` of the `size` pixels, from `first` on.
struct Axis {
    double first;
    double step;
    int size;
    Span at(int position) const
    {
        const int begin = std::clamp(static_cast<int>(first + position * step), 0, size - 1);
        const int end = static_cast<int>(first + (position + 1) * step);
        return {begin, std::clamp(end, begin + 1, size)};
    }
};

/// Adds to `sums` the mean of the levels that fall on each pixel of the sensor's row.
void addRow(const Level* levels, const Axis& across, std::vector<unsigned>& sums)
{
    for (std::size_t x = 0; x < sums.size(); ++x) {
        const Span columns = across.at(static_cast<int>(x));
        const unsigned sum = std::accumulate(levels + columns.begin, levels + columns.end, 0U);
        sums[x] += sum / static_cast<unsigned>(columns.end - columns.begin);
    }
}

/// `picture` as a sensor of the given size sees it.
Canvas fitted(const Canvas& picture, int width, int height, Space space)
{
    const Rect size = picture.bounds();
    const double step = std::min(static_cast<double>(size.width) / width,
                                 static_cast<double>(size.height) / height);
    const Axis across{(size.width - step * width) / 2, step, size.width};
    const Axis down{(size.height - step * height) / 2, step, size.height};
    Canvas out(width, height, space);
    Row scratch;
    std::vector<unsigned> sums;
    for (int y = 0; y < height; ++y) {
        const Span rows = down.at(y);
        const auto count = static_cast<unsigned>(rows.end - rows.begin);
        for (unsigned plane = 0; plane < planeCount(space); ++plane) {
            sums.assign(static_cast<std::size_t>(width), 0);
            for (int from = rows.begin; from < rows.end; ++from) {
                const RowView row = rowInSpace(picture.row(0, from, size.width), space, scratch);
                addRow(row.plane[plane], across, sums);
            }
            std::transform(sums.begin(), sums.end(), out.plane(plane, y),
                           [count](unsigned sum) { return static_cast<Level>(sum / count); });
        }
    }
    return out;
}

} // namespace

PictureScene::PictureScene(const std::filesystem::path& path, const SensorSettings& sensor)
    : width_(static_cast<int>(sensor.width)), height_(static_cast<int>(sensor.height)),
      space_(sensor.colour ? Space::rgb : Space::grey), whole_{0, 0, width_, height_}
{
    for (const std::filesystem::path& file : listPictures(path)) {
        checkPng(file);
        pictures_.push_back({file, std::nullopt});
    }
}

std::span<const Rect> PictureScene::paint(const FrameRequest& request)
{
    shown_ = &load(pictures_[request.number % pictures_.size()]);
    return {&whole_, pictures_.size() == 1 ? 0U : 1U};
}

const Canvas& PictureScene::load(Picture& picture)
{
    if (picture.canvas) {
        return *picture.canvas;
    }
    const std::size_t bytes = std::size_t{planeCount(space_)} * sizeof(Level) *
                              static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    if (kept_ + bytes > kKeepBytes) {
        for (Picture& other : pictures_) {
            other.canvas.reset();
        }
        kept_ = 0;
    }
    try {
        picture.canvas = fitted(readPng(picture.path), width_, height_, space_);
    } catch (const SceneError&) {
        picture.canvas.emplace(width_, height_, space_);
    }
    kept_ += bytes;
    return *picture.canvas;
}

} // namespace fcsim
