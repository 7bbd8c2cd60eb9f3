// The look-up table of a configuration.
#include "config/config_lut.h"

#include "config/config_check.h"
#include "config/lut_file.h"

#include <array>

namespace kxhost {
namespace {

constexpr std::array<std::string_view, 3> kSources = {"table", "file", "curve"};

std::vector<const GivenKey*> sourcesOf(const Configuration& configuration)
{
    std::vector<const GivenKey*> found;
    for (const std::string_view name : kSources) {
        if (const GivenKey* given = findGiven(configuration, "lut", name); given != nullptr) {
            found.push_back(given);
        }
    }
    return found;
}

/// What is wrong with the values of a table that was written out.
std::string checkEntries(const std::vector<std::uint16_t>& entries, unsigned bits)
{
    for (std::size_t index = 0; index < entries.size(); ++index) {
        if (unsigned{entries[index]} >> bits != 0) {
            return badLutEntry(index, std::to_string(entries[index]), bits);
        }
    }
    return {};
}

std::string fill(Settings& settings, std::string_view source)
{
    if (source == "file") {
        return readLutFile(settings.lutFile, settings.lutBits, settings.lut);
    }
    if (source == "curve") {
        settings.lut = curveEntries(settings.lutCurve, settings.lutBits);
        return {};
    }
    return checkEntries(settings.lut, settings.lutBits);
}

} // namespace

ConfigErrors completeLut(Configuration& configuration)
{
    const std::vector<const GivenKey*> sources = sourcesOf(configuration);
    if (sources.empty()) {
        return {};
    }
    const GivenKey& source = *sources.front();
    if (sources.size() > 1) {
        return {problemOf(configuration, *sources.back(),
                          "lut." + std::string(source.key->name) + " is given too (" +
                              source.where + "); a table has one source")};
    }
    const std::string problem = fill(configuration.settings, source.key->name);
    return problem.empty() ? ConfigErrors{}
                           : ConfigErrors{problemOf(configuration, source, problem)};
}

} // namespace kxhost
