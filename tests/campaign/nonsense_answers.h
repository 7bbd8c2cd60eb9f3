// Answers that make no sense, for each service of the host.
#ifndef KX_CAMPAIGN_NONSENSE_ANSWERS_H
#define KX_CAMPAIGN_NONSENSE_ANSWERS_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kxcampaign {

/// One answer of a service.
struct Nonsense {
    std::string label;
    std::function<void()> apply; ///< makes the prepared host answer so
    int code = 0;                ///< exit code of the run
    std::string message = {};    ///< level and part of a log line; empty: none is demanded
};

/// The answers to try of a service, none of one that answers nothing. Nothing: the table does not
/// know the service.
std::optional<std::vector<Nonsense>> nonsenseOf(const std::string& service);

/// Takes back what the answers left.
void clearNonsense();

} // namespace kxcampaign

#endif
