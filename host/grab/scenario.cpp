// The scenario parameters that the plug-in has published.
#include "grab/scenario.h"

#include <optional>
#include <string>

namespace kxhost {
namespace {

template <typename T, typename Pointers>
std::optional<T> readAs(const Pointers& values, int id)
{
    const void* value = values[static_cast<std::size_t>(id)];
    if (value == nullptr) {
        return std::nullopt;
    }
    return *static_cast<const T*>(value);
}

template <typename Pointers>
std::optional<std::string> readText(const Pointers& values, int id)
{
    const void* value = values[static_cast<std::size_t>(id)];
    if (value == nullptr) {
        return std::nullopt;
    }
    return static_cast<const char*>(value);
}

template <typename Pointers>
void keep(Pointers& values, int id, const void* value)
{
    if (id >= 0 && static_cast<std::size_t>(id) < values.size()) {
        values[static_cast<std::size_t>(id)] = value;
    }
}

} // namespace

void Scenario::publish(int id, const void* value)
{
    keep(values_, id, value);
}

void Scenario::publishFor(Instance instance, int id, const void* value)
{
    keep(instances_[static_cast<std::size_t>(instance)], id, value);
}

void Scenario::forgetInstances()
{
    instances_ = {};
}

ScenarioValues Scenario::read() const
{
    const std::uint32_t rxBits = readAs<std::uint32_t>(values_, kKxScRxBits).value_or(0);
    const bool hasWord = rxBits != 0;
    return {
        .width = readAs<std::uint32_t>(values_, kKxScWidth),
        .height = readAs<std::uint32_t>(values_, kKxScHeight),
        .codec = readText(values_, kKxScCodec),
        .gainDb = readAs<float>(values_, kKxScGainDb),
        .exposureUs = readAs<float>(values_, kKxScExposureUs),
        .unit = readAs<std::uint32_t>(values_, kKxScUnit),
        .cameraTimeUs = readAs<std::uint64_t>(values_, kKxScCameraTimeUs),
        .frameCounter = frameCounter(),
        .timestampUs = readAs<std::uint64_t>(values_, kKxScTimestampUs),
        .rxData = hasWord ? readAs<std::uint32_t>(values_, kKxScRxData) : std::nullopt,
        .rxBits = hasWord ? std::optional(rxBits) : std::nullopt,
        .configuration = {},
        .configurationNext = {},
        .changes = {},
        .ledger = {},
        .times = {},
        .awaySeconds = {},
    };
}

std::optional<std::uint32_t> Scenario::frameCounter() const
{
    return readAs<std::uint32_t>(values_, kKxScFrameCounter);
}

FrameInfo Scenario::frame(Instance instance) const
{
    const Pointers& own = instances_[static_cast<std::size_t>(instance)];
    FrameInfo info;
    info.instance = instance;
    info.width = readAs<std::uint32_t>(values_, kKxScWidth).value_or(0);
    info.height = readAs<std::uint32_t>(values_, kKxScHeight).value_or(0);
    info.codec = readText(own, kKxScCodec).value_or(readText(values_, kKxScCodec).value_or(""));
    return info;
}

} // namespace kxhost
