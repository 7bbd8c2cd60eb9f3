// The metadata of one frame as a line of NDJSON.
#include "export/export_metadata.h"

#include "export/change_report.h"
#include "export/ledger_report.h"

#include <nlohmann/json.hpp>

#include <array>
#include <charconv>
#include <optional>

namespace kxhost {

namespace {

using Json = nlohmann::ordered_json;

/// The double whose shortest text is the float's shortest text, so that 5.3f reads 5.3.
double readable(float value)
{
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    double result = 0;
    std::from_chars(text.data(), end, result);
    return result;
}

template <typename Value>
Json toJson(const Value& value)
{
    return value;
}

Json toJson(float value)
{
    return readable(value);
}

template <typename Value>
void addIfSet(Json& object, const char* key, const std::optional<Value>& value)
{
    if (value) {
        object[key] = toJson(*value);
    }
}

Json pictureJson(const PictureRecord& picture)
{
    Json object;
    object["instance"] = picture.info.instance == Instance::kRaw ? "raw" : "converted";
    if (!picture.file.empty()) {
        object["file"] = picture.file;
        object["bytes"] = picture.fileBytes;
    }
    object["codec"] = picture.info.codec;
    object["width"] = picture.info.width;
    object["height"] = picture.info.height;
    return object;
}

} // namespace

std::string metadataLine(std::uint64_t number, const ScenarioValues& values,
                         std::span<const PictureRecord> pictures)
{
    Json object;
    object["number"] = number;
    addIfSet(object, "timestamp_us", values.timestampUs);
    addIfSet(object, "camera_time_us", values.cameraTimeUs);
    addIfSet(object, "frame_counter", values.frameCounter);
    if (values.ledger.stretch != 0) {
        object["stretch"] = values.ledger.stretch;
    }
    addIfSet(object, "width", values.width);
    addIfSet(object, "height", values.height);
    addIfSet(object, "codec", values.codec);
    addIfSet(object, "gain_db", values.gainDb);
    addIfSet(object, "exposure_us", values.exposureUs);
    addIfSet(object, "unit", values.unit);
    addIfSet(object, "rx_data", values.rxData);
    addIfSet(object, "rx_bits", values.rxBits);
    addIfSet(object, "configuration", values.configuration);
    addIfSet(object, "configuration_next", values.configurationNext);
    if (!values.changes.empty()) {
        object["configuration_changes"] = changesJson(values.changes);
    }
    if (Json lost = lostBeforeJson(values.ledger.lostBefore); !lost.is_null()) {
        object["lost_before"] = std::move(lost);
    }
    addIfSet(object, "camera_away_s", values.awaySeconds);
    object["pictures"] = Json::array();
    for (const PictureRecord& picture : pictures) {
        object["pictures"].push_back(pictureJson(picture));
    }
    return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace kxhost
