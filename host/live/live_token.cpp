// The token of a live page that more than this computer can reach.
#include "live/live_token.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <system_error>

namespace kxhost {
namespace {

constexpr std::size_t kShortest = 16;
constexpr std::size_t kLongest = 256;

/// What a header takes as it stands: visible ASCII.
bool isWritable(char character)
{
    return character > ' ' && character <= '~';
}

LiveToken checked(const std::string& token, const std::string& source)
{
    if (token.size() < kShortest || token.size() > kLongest ||
        !std::ranges::all_of(token, isWritable)) {
        return {"", source + " holds no token: " + std::to_string(kShortest) + " to " +
                        std::to_string(kLongest) +
                        " characters are needed, letters, digits and signs without spaces."};
    }
    return {token, ""};
}

} // namespace

LiveToken readLiveToken(const std::string& path)
{
    if (path.empty()) {
        const char* const value = std::getenv("KXHOST_LIVE_TOKEN");
        return value == nullptr ? LiveToken{} : checked(value, "KXHOST_LIVE_TOKEN");
    }
    std::ifstream file(path);
    std::string line;
    // A folder can be opened, but not read.
    if (!file || (!std::getline(file, line) && !file.eof())) {
        return {"", "Cannot read the token file " + path + ": " +
                        std::generic_category().message(errno) + "."};
    }
    if (line.ends_with('\r')) {
        line.pop_back();
    }
    return checked(line, path);
}

} // namespace kxhost
