// Reads configurations for tests, good ones and bad ones.
#ifndef KX_TESTS_CONFIG_FIXTURE_H
#define KX_TESTS_CONFIG_FIXTURE_H

#include "config/config.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace kxhost {

/// Reads `text` as the file camera.toml in `folder`.
inline ConfigErrors read(std::string_view text, Configuration& result,
                         const std::vector<std::string>& overrides = {},
                         const std::string& folder = {})
{
    return readConfiguration(text, "camera.toml", folder, overrides, result);
}

/// A configuration that is expected to be good.
inline Configuration good(std::string_view text, const std::vector<std::string>& overrides = {},
                          const std::string& folder = {})
{
    Configuration result;
    const ConfigErrors errors = read(text, result, overrides, folder);
    EXPECT_TRUE(errors.empty()) << (errors.empty() ? "" : errors.front());
    return result;
}

/// The only error of a configuration that is expected to be bad.
inline std::string onlyError(std::string_view text, const std::vector<std::string>& overrides = {},
                             const std::string& folder = {})
{
    Configuration result;
    const ConfigErrors errors = read(text, result, overrides, folder);
    EXPECT_EQ(errors.size(), 1U);
    return errors.empty() ? "" : errors.front();
}

} // namespace kxhost

#endif
