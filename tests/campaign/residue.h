// What a run may leave behind: nothing that it opened, started or took.
#ifndef KX_CAMPAIGN_RESIDUE_H
#define KX_CAMPAIGN_RESIDUE_H

#include "campaign_run.h"
#include "process_resources.h"

#include <string>

namespace kxcampaign {

/// Names what a run did not release: cameras on the bus that somebody holds, descriptors and
/// threads beyond `before`, termination signals that are kept although nobody looks for them any
/// more. Empty: nothing. REQUIRES: no fault is set and all cameras are on the bus.
std::string residueOf(const Outcome& outcome, const kxtest::ProcessResources& before);

/// Ends the process with `text` on standard error when the next call, or the end of the process,
/// does not come within two minutes.
void watch(const std::string& text);

} // namespace kxcampaign

#endif
