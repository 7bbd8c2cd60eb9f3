// One journal of everything that the plug-in does to the outside.
#include "journal.h"

#include "control/sim_control.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <utility>

namespace kxtest {

std::string Event::line() const
{
    return kind == Kind::log ? std::to_string(result) + " " + arguments
                             : name + "(" + arguments + ")";
}

void Journal::takeSdkCalls()
{
    for (const fcsim::Call& call : fcsim::takeCalls()) {
        events_.push_back({Kind::sdk, call.object + "." + call.operation, call.arguments,
                           call.result, call.thread});
    }
}

void Journal::add(Event event)
{
    const std::lock_guard lock(mutex_);
    takeSdkCalls();
    events_.push_back(std::move(event));
}

std::vector<Event> Journal::events()
{
    const std::lock_guard lock(mutex_);
    takeSdkCalls();
    return events_;
}

std::vector<std::string> Journal::lines(const std::function<bool(const Event&)>& wanted)
{
    std::vector<std::string> found;
    for (const Event& event : events()) {
        if (wanted(event)) {
            found.push_back(event.line());
        }
    }
    return found;
}

std::vector<std::string> Journal::lines(Kind kind)
{
    return lines([kind](const Event& event) { return event.kind == kind; });
}

std::vector<std::string> Journal::lines(std::initializer_list<std::string_view> names)
{
    return lines([names](const Event& event) {
        return std::find(names.begin(), names.end(), event.name) != names.end();
    });
}

std::vector<std::string> Journal::logsWith(std::string_view text)
{
    return lines([text](const Event& event) {
        return event.kind == Kind::log && event.arguments.find(text) != std::string::npos;
    });
}

std::size_t Journal::count(std::string_view name)
{
    return lines({name}).size();
}

void Journal::clear()
{
    const std::lock_guard lock(mutex_);
    takeSdkCalls();
    events_ = std::vector<Event>(); // with its memory, which some tests count
}

Journal& journal()
{
    // Never destroyed: the plug-in's own destructors at the end of the process may still speak.
    static auto* const instance = new Journal;
    return *instance;
}

std::string format(const char* format, ...)
{
    std::array<char, 4096> text{};
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    return {text.data(), std::min(text.size() - 1, static_cast<std::size_t>(std::max(length, 0)))};
}

} // namespace kxtest
