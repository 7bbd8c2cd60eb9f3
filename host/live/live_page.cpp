// The live page itself.
#include "live/live_page.h"

#include "live/live_page_text.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <string>
#include <system_error>

#include <sys/random.h>

namespace kxhost {
namespace {

/// What script and style show to be the page's own; a new one each time.
std::string makeNonce()
{
    std::array<std::uint64_t, 2> random{};
    if (getrandom(random.data(), sizeof random, 0) != sizeof random) {
        throw std::system_error(errno, std::generic_category(), "no random numbers");
    }
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%016llx%016llx",
                  static_cast<unsigned long long>(random[0]),
                  static_cast<unsigned long long>(random[1]));
    return text.data();
}

void replaceAll(std::string& text, const std::string& what, const std::string& by)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at)) {
        text.replace(at, what.size(), by);
    }
}

} // namespace

HttpReply livePage()
{
    const std::string nonce = makeNonce();
    HttpReply reply{200, "text/html; charset=utf-8", kLivePageText, {}};
    replaceAll(reply.body, "NONCE", nonce);
    reply.headers.emplace_back(
        "Content-Security-Policy",
        "default-src 'none'; script-src 'nonce-" + nonce + "'; style-src 'nonce-" + nonce +
            "'; img-src blob: data:; connect-src 'self'; base-uri 'none'; form-action 'none'; "
            "frame-ancestors 'none'");
    return reply;
}

} // namespace kxhost
