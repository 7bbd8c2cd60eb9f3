// One HTTP request and its reply, as text in and text out: the door to the HTTP library.
//
// The library's own server is not used. It reads from sockets that block, so that each slow client
// takes one of its threads, and it ends only when the last of them has.
#include "live/live_http.h"

#include <algorithm>
#include <cstring>

#include <httplib.h>
#include <strings.h>

namespace kxhost {
namespace {

bool isNamed(const std::pair<std::string, std::string>& header, std::string_view name)
{
    return header.first.size() == name.size() &&
           strncasecmp(header.first.data(), name.data(), name.size()) == 0;
}

/// The head without its lines of this header.
std::string without(std::string_view name, std::string_view head)
{
    std::string rest;
    while (!head.empty()) {
        const std::string_view line =
            head.substr(0, std::min(head.find('\n'), head.size() - 1) + 1);
        const bool isIt = line.size() > name.size() && line[name.size()] == ':' &&
                          strncasecmp(line.data(), name.data(), name.size()) == 0;
        if (!isIt) {
            rest += line;
        }
        head.remove_prefix(line.size());
    }
    return rest;
}

/// What the library takes for a connection: the bytes of a request, and those of its reply.
class TextStream : public httplib::Stream {
public:
    explicit TextStream(std::string_view head) : unread_(head) {}

    bool is_readable() const override { return !unread_.empty(); }
    bool is_writable() const override { return true; }
    ssize_t read(char* to, size_t size) override
    {
        const std::size_t count = std::min(size, unread_.size());
        std::memcpy(to, unread_.data(), count);
        unread_.remove_prefix(count);
        return static_cast<ssize_t>(count);
    }
    ssize_t write(const char* from, size_t size) override
    {
        written.append(from, size);
        return static_cast<ssize_t>(size);
    }
    void get_remote_ip_and_port(std::string&, int&) const override {}
    void get_local_ip_and_port(std::string&, int&) const override {}
    socket_t socket() const override { return 0; }

    std::string written;

private:
    std::string_view unread_;
};

HttpRequest requestOf(const httplib::Request& from, bool isLastTry)
{
    HttpRequest request;
    request.method = from.method;
    request.path = from.path;
    request.headers.assign(from.headers.begin(), from.headers.end());
    request.isLastTry = isLastTry;
    return request;
}

void write(const HttpReply& reply, httplib::Response& to)
{
    to.status = reply.status;
    for (const auto& [name, value] : reply.headers) {
        to.set_header(name, value);
    }
    to.set_content(reply.body, reply.type);
}

} // namespace

std::size_t HttpRequest::count(std::string_view name) const
{
    return static_cast<std::size_t>(
        std::ranges::count_if(headers, [&](const auto& each) { return isNamed(each, name); }));
}

std::optional<std::string> HttpRequest::header(std::string_view name) const
{
    if (count(name) != 1) {
        return {};
    }
    return std::ranges::find_if(headers, [&](const auto& each) { return isNamed(each, name); })
        ->second;
}

/// Uses what the library's server does between reading a request and writing its reply.
class HttpEngine::Impl : private httplib::Server {
public:
    explicit Impl(HttpHandler handler) : handler_(std::move(handler))
    {
        set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& reply) {
            handle(request, reply);
            return HandlerResponse::Handled;
        });
    }

    std::variant<std::string, HttpLater> answer(std::string_view head, bool isLastTry)
    {
        // The library reads ranges by an expression that takes more stack the longer they are, and
        // a thread may have little. Nobody gets a part of a reply here.
        const std::string request = without("Range", head);
        TextStream stream(request);
        bool isClosed = false;
        isLastTry_ = isLastTry;
        later_.reset();
        process_request(stream, true, isClosed, [](httplib::Request& each) {
            // Compression is of no use here.
            each.headers.erase("Accept-Encoding");
            each.headers.erase("Expect");
        });
        if (later_) {
            return *later_;
        }
        return std::move(stream.written);
    }

private:
    void handle(const httplib::Request& request, httplib::Response& reply)
    {
        HttpAnswer answer = HttpReply{500, "text/plain", "This is a defect of kxhost.\n", {}};
        try {
            answer = handler_(requestOf(request, isLastTry_));
        } catch (const std::exception&) {
            // Want of memory, most likely: the page may go without, the grab goes on.
        }
        if (const auto* const later = std::get_if<HttpLater>(&answer)) {
            later_ = *later;
        } else {
            write(std::get<HttpReply>(answer), reply);
        }
    }

    HttpHandler handler_;
    bool isLastTry_ = true;
    std::optional<HttpLater> later_; ///< of the request at hand
};

HttpEngine::HttpEngine(HttpHandler handler) : impl_(std::make_unique<Impl>(std::move(handler))) {}

HttpEngine::~HttpEngine() = default;

std::variant<std::string, HttpLater> HttpEngine::answer(std::string_view head, bool isLastTry)
{
    return impl_->answer(head, isLastTry);
}

} // namespace kxhost
