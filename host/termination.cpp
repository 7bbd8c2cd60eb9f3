// The wish to end, handed from the thread that waits for signals to the one that grabs.
#include "termination.h"

namespace kxhost {

void Termination::request(FinishCode code)
{
    const std::lock_guard lock(mutex_);
    if (!requested_) {
        requested_ = true;
        pending_ = code;
        changed_.notify_all();
    }
}

bool Termination::requested() const
{
    const std::lock_guard lock(mutex_);
    return requested_;
}

int Termination::pending() const
{
    const std::lock_guard lock(mutex_);
    return pending_;
}

void Termination::acknowledge()
{
    const std::lock_guard lock(mutex_);
    pending_ = 0;
}

bool Termination::sleep(std::chrono::milliseconds time)
{
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, time, [this] { return requested_; });
}

} // namespace kxhost
