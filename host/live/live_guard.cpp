// Who may see the live page and press its buttons.
#include "live/live_guard.h"

#include "live/live_address.h"
#include "live/live_reply.h"

namespace kxhost {
namespace {

constexpr std::string_view kBearer = "Bearer ";

/// "localhost" of "localhost:8080", "[::1]" of "[::1]:8080". The port is not looked at: a tunnel
/// has another one at its near end.
std::string_view withoutPort(std::string_view host)
{
    const std::size_t colon = host.rfind(':');
    const bool isInBrackets = colon != std::string_view::npos && host.find(']', colon) != host.npos;
    return isInBrackets ? host : host.substr(0, colon);
}

/// Nobody can bind an address in numbers to another computer.
bool namesThisComputer(std::string_view host)
{
    const std::optional<LiveAddress> address =
        parseLiveAddress(std::string(withoutPort(host)) + ":0");
    return address && address->isLoopback;
}

/// Without "http://" or, where something before this server encrypts, "https://".
std::string_view hostOfOrigin(std::string_view origin)
{
    for (const std::string_view scheme : {"http://", "https://"}) {
        if (origin.starts_with(scheme)) {
            return origin.substr(scheme.size());
        }
    }
    return {}; // "null", or a file
}

/// A browser says where a request comes from; other programs do not.
bool isOfAnotherSite(const HttpRequest& request, std::string_view host)
{
    if (request.count("Origin") != 0 &&
        hostOfOrigin(request.header("Origin").value_or("")) != host) {
        return true;
    }
    const std::string site = request.header("Sec-Fetch-Site").value_or("none");
    // Links and bookmarks may lead to the page, which shows nothing by itself.
    const bool isPage = request.method == "GET" && request.path == "/";
    return site != "same-origin" && site != "none" && !isPage;
}

bool bringsBody(const HttpRequest& request)
{
    return request.count("Transfer-Encoding") != 0 ||
           (request.count("Content-Length") != 0 && request.header("Content-Length") != "0");
}

std::optional<HttpReply> refusalOfToken(const HttpRequest& request, const std::string& token)
{
    const std::optional<std::string> shown = request.header("Authorization");
    if (!shown || !shown->starts_with(kBearer)) {
        HttpReply reply = errorReply(401, "A token is needed: \"Authorization: Bearer TOKEN\".");
        reply.headers.emplace_back("WWW-Authenticate", "Bearer");
        return reply;
    }
    if (!isSameSecret(std::string_view(*shown).substr(kBearer.size()), token)) {
        return errorReply(403, "The token is wrong.");
    }
    return {};
}

} // namespace

bool isSameSecret(std::string_view given, std::string_view secret)
{
    unsigned difference = given.size() == secret.size() ? 0 : 1;
    for (std::size_t i = 0; i < given.size(); ++i) {
        const char expected = secret.empty() ? '\0' : secret[i % secret.size()];
        difference |= static_cast<unsigned>(given[i] ^ expected);
    }
    return difference == 0 && !secret.empty();
}

std::optional<HttpReply> refusalOf(const HttpRequest& request, const LiveRights& rights)
{
    const std::optional<std::string> host = request.header("Host");
    if (!host || (rights.isLoopback && !namesThisComputer(*host))) {
        return errorReply(403, "This page answers to localhost and loopback addresses only.");
    }
    if (isOfAnotherSite(request, *host)) {
        return errorReply(403, "Pages of other sites may not use this one.");
    }
    if (bringsBody(request)) {
        return errorReply(413, "No request here needs a body.");
    }
    // The page itself holds nothing; it asks for the token.
    if (!rights.token.empty() && request.path != "/") {
        return refusalOfToken(request, rights.token);
    }
    return {};
}

} // namespace kxhost
