// One HTTP request and its reply, as text in and text out: the door to the HTTP library.
#ifndef KXHOST_LIVE_HTTP_H
#define KXHOST_LIVE_HTTP_H

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace kxhost {

struct HttpRequest {
    std::string method; ///< "GET"
    std::string path;   ///< decoded, without the query
    std::vector<std::pair<std::string, std::string>> headers;
    bool isLastTry = true; ///< nobody waits any longer: `HttpLater` is no reply any more

    /// The value of a header, which may have been written in any case. Nothing = it is missing, or
    /// there is more than one.
    std::optional<std::string> header(std::string_view name) const;
    std::size_t count(std::string_view name) const;
};

struct HttpReply {
    int status = 200;
    std::string type; ///< media type of the body
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers; ///< further ones
};

/// There is no reply yet: the request is to be asked again when something has happened, at the
/// latest after this time.
struct HttpLater {
    std::chrono::milliseconds atMost;
};

using HttpAnswer = std::variant<HttpReply, HttpLater>;
using HttpHandler = std::function<HttpAnswer(const HttpRequest&)>;

/// Reads requests and writes replies; one thread. Bodies of requests are not read: who sends one
/// gets what the handler makes of its headers.
class HttpEngine {
public:
    explicit HttpEngine(HttpHandler handler);
    ~HttpEngine();
    HttpEngine(const HttpEngine&) = delete;
    HttpEngine& operator=(const HttpEngine&) = delete;

    /// `head` is a request up to the empty line behind its headers. Returns the bytes to send back,
    /// behind which the connection ends (a request that cannot be understood gets its reply here),
    /// or that they come later. `isLastTry` = they must come now.
    std::variant<std::string, HttpLater> answer(std::string_view head, bool isLastTry);

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace kxhost

#endif
