// What the summary and the metadata say of the configurations of a grab.
#include "export/change_report.h"

#include <nlohmann/json.hpp>

namespace kxhost {

using Json = nlohmann::ordered_json;

nlohmann::ordered_json changesJson(const std::vector<ConfigurationChangePtr>& changes)
{
    Json all = Json::array();
    for (const ConfigurationChangePtr& each : changes) {
        Json changed = Json::object();
        for (const auto& [key, value] : each->changed) {
            changed[key] = value.empty() ? Json() : Json(value);
        }
        all.push_back({{"number", each->number},
                       {"kind", changeKindWord(each->kind)},
                       {"at_us", each->atUs},
                       {"changed", changed}});
    }
    return all;
}

} // namespace kxhost
