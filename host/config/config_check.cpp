// What keys demand of each other.
#include "config/config_check.h"

#include "config/config_iobox.h"
#include "config/config_value.h"
#include "config/toml_text.h"

#include <algorithm>
#include <iterator>

namespace kxhost {
namespace {

bool isGiven(const Configuration& configuration, std::string_view section, std::string_view name)
{
    return findGiven(configuration, section, name) != nullptr;
}

std::string valueOf(const Configuration& configuration, const GivenKey& given)
{
    Settings settings = configuration.settings;
    return onOneLine(valueText(given.key->rule, given.key->slot(settings, given.index)));
}

/// Two keys that the plug-in can only use together.
void checkPair(const Configuration& configuration, std::string_view section, std::string_view one,
               std::string_view other, ConfigErrors& errors)
{
    const GivenKey* first = findGiven(configuration, section, one);
    const GivenKey* second = findGiven(configuration, section, other);
    if ((first == nullptr) == (second == nullptr)) {
        return;
    }
    const GivenKey& lonely = first != nullptr ? *first : *second;
    const std::string_view partner = first != nullptr ? other : one;
    errors.push_back(
        problemOf(configuration, lonely, "needs " + std::string(partner) + " beside it"));
}

/// A range whose lower end must not lie above its upper end.
void checkRange(const Configuration& configuration, std::string_view low, std::string_view high,
                float lowValue, float highValue, ConfigErrors& errors)
{
    checkPair(configuration, "auto", low, high, errors);
    const GivenKey* given = findGiven(configuration, "auto", low);
    const GivenKey* partner = findGiven(configuration, "auto", high);
    if (given != nullptr && partner != nullptr && lowValue > highValue) {
        errors.push_back(problemOf(configuration, *given,
                                   "lies above " + std::string(high) + " = " +
                                       valueOf(configuration, *partner)));
    }
}

void completeMode(Configuration& configuration, std::string_view section, std::string_view value,
                  std::string_view mode, std::int32_t& setting)
{
    if (isGiven(configuration, section, value) && !isGiven(configuration, section, mode)) {
        setting = kSweepManual;
    }
}

} // namespace

void completeModes(Configuration& configuration)
{
    Settings& settings = configuration.settings;
    completeMode(configuration, "acquisition", "exposure", "exposure_mode", settings.exposureMode);
    completeMode(configuration, "acquisition", "gain", "gain_mode", settings.gainMode);
    for (const std::string_view source : {"table", "file", "curve"}) {
        completeMode(configuration, "lut", source, "mode", settings.lutMode);
    }
}

ConfigErrors checkConfiguration(const Configuration& configuration)
{
    const Settings& settings = configuration.settings;
    ConfigErrors errors;
    checkRange(configuration, "gain_min", "gain_max", settings.autoGainMinDb,
               settings.autoGainMaxDb, errors);
    checkRange(configuration, "exposure_min", "exposure_max", settings.autoExposureMinUs,
               settings.autoExposureMaxUs, errors);
    checkPair(configuration, "color", "white_balance_red", "white_balance_blue", errors);
    std::ranges::move(checkIobox(configuration), std::back_inserter(errors));
    return errors;
}

std::string problemOf(const Configuration& configuration, const GivenKey& given,
                      std::string_view problem)
{
    std::string text = given.where + ": " + std::string(given.key->section) + ".";
    text.append(given.key->name).append(" = ").append(valueOf(configuration, given));
    return text.append(": ").append(problem);
}

} // namespace kxhost
