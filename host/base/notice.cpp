// What kxhost tells its user while it runs.
#include "base/notice.h"

#include <chrono>
#include <cstdio>
#include <deque>
#include <mutex>

#include <unistd.h>

namespace kxhost {
namespace {

constexpr std::size_t kMostKept = 20;

/// Keeps the latest sentences for who looks later.
class NoticeBook {
public:
    void add(const std::string& sentence)
    {
        const auto now = std::chrono::system_clock::now().time_since_epoch();
        const auto us = std::chrono::duration_cast<std::chrono::microseconds>(now).count();
        const std::lock_guard lock(mutex_);
        notices_.push_back({++count_, static_cast<std::uint64_t>(us), sentence});
        if (notices_.size() > kMostKept) {
            notices_.pop_front();
        }
    }

    std::vector<Notice> all()
    {
        const std::lock_guard lock(mutex_);
        return {notices_.begin(), notices_.end()};
    }

private:
    std::mutex mutex_;
    std::uint64_t count_ = 0;
    std::deque<Notice> notices_;
};

NoticeBook& book()
{
    static NoticeBook book;
    return book;
}

} // namespace

void complain(const std::string& sentence)
{
    const char* const clear = isatty(STDERR_FILENO) != 0 ? "\r\033[K" : "";
    std::fprintf(stderr, "%skxhost: %s\n", clear, sentence.c_str());
    book().add(sentence);
}

std::vector<Notice> latestNotices()
{
    return book().all();
}

} // namespace kxhost
