// The buttons of the live page.
#include "live/live_steering.h"

#include "live/live_reply.h"
#include "live/steering_words.h"

#include <nlohmann/json.hpp>

#include <string>
#include <system_error>

namespace kxhost {

HttpReply LiveSteering::press(std::string_view word)
{
    const SteeringWord* const steering = findSteeringWord(word);
    if (steering == nullptr) {
        return errorReply(404, "There is no such button.");
    }
    if (isFinishSent_ || signals_.finishAsked() || counts_.over) {
        return errorReply(409, "The grab is finishing.");
    }
    if (const int error = raise_(steering->signal); error != 0) {
        return errorReply(500, "Cannot send the signal: " + std::generic_category().message(error) +
                                   ".");
    }
    isFinishSent_ = steering->code == kFinishTerminate;
    return jsonReply(202, {{"asked", word}});
}

} // namespace kxhost
