// Whether this process may run the real-time thread that the I/O lines need.
#include "grab/real_time.h"

#include <system_error>

#include <pthread.h>
#include <sched.h>

namespace kxhost {
namespace {

/// Of the plug-in's control thread.
constexpr int kPriority = 98;

/// Returns 0, or the error with which such a thread is refused.
int tryRealTime()
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    sched_param parameters = {};
    parameters.sched_priority = kPriority;
    pthread_attr_setinheritsched(&attributes, PTHREAD_EXPLICIT_SCHED);
    pthread_attr_setschedpolicy(&attributes, SCHED_FIFO);
    pthread_attr_setschedparam(&attributes, &parameters);
    pthread_t thread = {};
    const int error = pthread_create(
        &thread, &attributes, [](void*) -> void* { return nullptr; }, nullptr);
    pthread_attr_destroy(&attributes);
    if (error == 0) {
        pthread_join(thread, nullptr);
    }
    return error;
}

} // namespace

std::string realTimeTrouble(const Settings& settings)
{
    const int error = settings.iobox.empty() ? 0 : tryRealTime();
    return error == 0
               ? ""
               : "The settings of [[iobox]] will have no effect: this process may not run a "
                 "thread with real-time priority " +
                     std::to_string(kPriority) + " (" + std::generic_category().message(error) +
                     "). \"kxhost doctor\" says how to give it the limit rtprio " +
                     std::to_string(kPriority) + "; the grab goes on without.";
}

} // namespace kxhost
