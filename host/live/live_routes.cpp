// What there is to ask the live page for.
#include "live/live_routes.h"

#include "live/live_page.h"
#include "live/live_reply.h"
#include "live/steering_words.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>

namespace kxhost {
namespace {

using namespace std::chrono_literals;

/// Who waits for the end asks again now and then, so that what lies between does not forget him.
constexpr auto kEndPeriod = 25s;

constexpr std::array<std::string_view, 5> kGets = {"/", "/status.json", "/frame.png",
                                                   "/histogram.json", "/end.json"};

bool isButton(std::string_view path)
{
    return path.starts_with('/') && findSteeringWord(path.substr(1)) != nullptr;
}

HttpReply wrongMethod(const char* allowed)
{
    HttpReply reply = errorReply(405, std::string("This takes ") + allowed + " only.");
    reply.headers.emplace_back("Allow", allowed);
    return reply;
}

void protect(HttpReply& reply)
{
    constexpr std::string_view kPolicy = "Content-Security-Policy";
    const auto isPolicy = [&](const auto& header) { return header.first == kPolicy; };
    if (std::ranges::none_of(reply.headers, isPolicy)) {
        reply.headers.emplace_back(kPolicy, "default-src 'none'; frame-ancestors 'none'");
    }
    reply.headers.insert(reply.headers.end(), {{"Cache-Control", "no-store"},
                                               {"X-Content-Type-Options", "nosniff"},
                                               {"X-Frame-Options", "DENY"},
                                               {"Referrer-Policy", "no-referrer"},
                                               {"Cross-Origin-Resource-Policy", "same-origin"}});
}

} // namespace

HttpAnswer LiveRoutes::handle(const HttpRequest& request)
{
    HttpAnswer answer = route(request);
    if (auto* const reply = std::get_if<HttpReply>(&answer)) {
        protect(*reply);
    }
    return answer;
}

HttpAnswer LiveRoutes::route(const HttpRequest& request)
{
    if (std::optional<HttpReply> refusal = refusalOf(request, rights_)) {
        return *refusal;
    }
    if (isButton(request.path)) {
        return request.method == "POST" ? sources_.steering.press(request.path.substr(1))
                                        : wrongMethod("POST");
    }
    if (std::ranges::find(kGets, request.path) == kGets.end()) {
        return errorReply(404, "There is no such page.");
    }
    return request.method == "GET" ? get(request) : wrongMethod("GET");
}

HttpAnswer LiveRoutes::get(const HttpRequest& request)
{
    if (request.path == "/") {
        return livePage();
    }
    if (request.path == "/status.json") {
        return jsonReply(200, sources_.status());
    }
    if (request.path == "/frame.png") {
        return sources_.picture.png(request);
    }
    if (request.path == "/histogram.json") {
        return sources_.picture.histogram();
    }
    return end(request);
}

HttpAnswer LiveRoutes::end(const HttpRequest& request)
{
    const std::optional<LiveEnd> end = sources_.end();
    if (!end && !request.isLastTry) {
        return HttpLater{kEndPeriod};
    }
    return jsonReply(200, endJson(end));
}

} // namespace kxhost
