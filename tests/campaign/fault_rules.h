// What the plug-in answers when a call of the SDK fails: the table that the campaign checks.
#ifndef KX_CAMPAIGN_FAULT_RULES_H
#define KX_CAMPAIGN_FAULT_RULES_H

#include "campaign_run.h"

#include <optional>
#include <string>
#include <vector>

namespace kxcampaign {

/// How a call goes wrong.
enum class Failure {
    error,          ///< it returns an error
    timeout,        ///< it returns a time-out
    exception,      ///< it throws std::runtime_error
    foreign,        ///< it throws what is no standard exception
    unplug,         ///< the camera leaves the bus, with an error
    unplugAndThrow, ///< the same with std::runtime_error, as the maker's library may
};
inline constexpr std::size_t kFailures = 6;
const char* nameOf(Failure failure);

/// The text of the errors and exceptions.
inline constexpr const char* kFaultText = "refused by the campaign";

/// What a failed call leads to.
struct Answer {
    /// Exit code of the run; nothing: the run ends as it would have.
    std::optional<int> code;
    /// Level ('e', 'w', 'i', 'd') and part of a log line, in which %d is the call's detail, %t the
    /// error's text. Nothing: no line of the log shows the error.
    std::string message;
    bool oncePerProcess = false; ///< the message comes only for the first such failure
    bool sameFrames = true;      ///< as many frames are exported as without the failure
};

/// What is to become of a run in which `call` fails with an error once, or with `always` from then
/// on. Nothing: the table does not know the call.
std::optional<Answer> answerTo(const TracedCall& call, unsigned occurrence, Failure failure,
                               bool always);

} // namespace kxcampaign

#endif
