// The recording host's state: frame memory and the values published with each export.
#include "recording_host.h"

#include "kx_scenario.h"

namespace kxtest {

namespace {

template <typename T>
double numberAt(const void* value)
{
    return static_cast<double>(*static_cast<const T*>(value));
}

double valueOf(int id, const void* value)
{
    switch (id) {
    case kKxScGainDb:
    case kKxScExposureUs:
        return numberAt<float>(value);
    case kKxScCameraTimeUs:
    case kKxScTimestampUs:
        return numberAt<std::uint64_t>(value);
    default:
        return numberAt<std::uint32_t>(value);
    }
}

} // namespace

void RecordingHost::initPool(std::uint32_t count)
{
    poolCount_ = count;
    pool_.reset();
}

void RecordingHost::setPoolFrameSize(std::uint32_t bytes)
{
    poolStep_ = slotStep != 0 ? slotStep : bytes;
    if (bufPtr) {
        return;
    }
    pool_ = std::shared_ptr<std::byte[]>(new std::byte[poolCount_ * poolStep_ + 1]());
}

void* RecordingHost::slot(std::uint32_t index)
{
    if (bufPtr) {
        return bufPtr(index);
    }
    return pool_ && index < poolCount_ ? pool_.get() + index * poolStep_ : nullptr;
}

void RecordingHost::exportValues(std::uint64_t timestampUs)
{
    Export out;
    out.timestampUs = timestampUs;
    for (const auto& [id, value] : published) {
        if (id == kKxScCodec) {
            out.texts[id] = static_cast<const char*>(value);
        } else {
            out.numbers[id] = valueOf(id, value);
        }
    }
    exports.push_back(std::move(out));
}

RecordingHost& host()
{
    static RecordingHost instance;
    return instance;
}

} // namespace kxtest
