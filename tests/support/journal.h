// One journal of everything that the plug-in does to the outside: host calls, SDK calls, log lines
// and system calls, in the order in which they happened.
#ifndef KX_TEST_JOURNAL_H
#define KX_TEST_JOURNAL_H

#include <functional>
#include <initializer_list>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace kxtest {

enum class Kind {
    getter,  ///< configuration getter of the host
    host,    ///< any other host service
    utility, ///< time difference: called so often that it would drown the rest
    sdk,     ///< call into the simulated SDK
    log,     ///< line of the system log
    system,  ///< function of the C library
};

/// Stands at the end of a log line that came without a line's end.
inline constexpr const char* kNoLineEnd = "(no line end)";

/// One thing that happened.
struct Event {
    Kind kind = Kind::host;
    std::string name;         ///< function; of an SDK call with its object: "Camera.ReadRegister"
    std::string arguments;    ///< separated by ", "; of a log line its text without the line's end
    int result = 0;           ///< of an SDK call its ErrorType, of a log line its priority
    std::thread::id thread{}; ///< that made it; only of an SDK call

    /// "name(arguments)"; of a log line "<priority> text".
    std::string line() const;
};

/// Keeps the events of the process. Any thread.
class Journal {
public:
    /// Appends an event, after the SDK calls that were made before it.
    void add(Event event);
    /// All events so far.
    std::vector<Event> events();
    /// The events that `wanted` picks, as lines.
    std::vector<std::string> lines(const std::function<bool(const Event&)>& wanted);
    /// The events of one kind, or those with one of these names, as lines.
    std::vector<std::string> lines(Kind kind);
    std::vector<std::string> lines(std::initializer_list<std::string_view> names);
    /// The lines of the system log, and those that contain `text`.
    std::vector<std::string> logs() { return lines(Kind::log); }
    std::vector<std::string> logsWith(std::string_view text);
    std::size_t count(std::string_view name);
    /// Forgets everything.
    void clear();

private:
    void takeSdkCalls();

    std::mutex mutex_;
    std::vector<Event> events_;
};

/// The journal of this process.
Journal& journal();

/// The text that printf makes of this.
[[gnu::format(printf, 1, 2)]] std::string format(const char* format, ...);

/// Lines of the system log as the journal shows them.
inline std::string info(const std::string& body)
{
    return "6 [i] " + body;
}
inline std::string warning(const std::string& function, const std::string& body)
{
    return "4 [w|" + function + "] " + body;
}
inline std::string debug(const std::string& function, const std::string& body)
{
    return "7 [d|" + function + "] " + body;
}

} // namespace kxtest

#endif
