// Counts what a campaign has tried, and prints it as tables.
#ifndef KX_CAMPAIGN_TRIED_H
#define KX_CAMPAIGN_TRIED_H

#include "fault_rules.h"

#include <array>
#include <map>
#include <set>
#include <string>

namespace kxcampaign {

class Tried {
public:
    void add(const TracedCall& call, Failure failure);
    /// Two tables in Markdown: runs by phase and failure, and runs by operation and phase.
    std::string text() const;

private:
    std::string phasesText() const;
    std::string operationsText() const;

    template <std::size_t N>
    using Counts = std::array<unsigned, N>;

    std::map<Phase, Counts<kFailures>> byPhase_;
    std::map<Phase, std::set<std::string>> keys_;
    std::map<std::string, Counts<kPhases>> byOperation_;
};

} // namespace kxcampaign

#endif
