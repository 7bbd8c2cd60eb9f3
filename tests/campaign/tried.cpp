// Counts what a campaign has tried, and prints it as tables.
#include "tried.h"

#include <numeric>
#include <sstream>

namespace kxcampaign {

namespace {

template <typename Range>
unsigned sumOf(const Range& counts)
{
    return std::accumulate(counts.begin(), counts.end(), 0U);
}

std::string ruler(std::size_t columns)
{
    std::string line = "| --- |";
    for (std::size_t column = 0; column < columns; ++column) {
        line += " --- |";
    }
    return line + "\n";
}

} // namespace

void Tried::add(const TracedCall& call, Failure failure)
{
    ++byPhase_[call.phase][static_cast<std::size_t>(failure)];
    keys_[call.phase].insert(call.key());
    ++byOperation_[call.object + "." + call.operation][static_cast<std::size_t>(call.phase)];
}

std::string Tried::text() const
{
    return phasesText() + "\n" + operationsText();
}

std::string Tried::phasesText() const
{
    std::ostringstream out;
    out << "| phase | calls | runs |";
    for (std::size_t failure = 0; failure < kFailures; ++failure) {
        out << " " << nameOf(static_cast<Failure>(failure)) << " |";
    }
    out << "\n" << ruler(kFailures + 2);
    std::array<unsigned, kFailures + 2> totals{};
    for (const auto& [phase, counts] : byPhase_) {
        const auto calls = static_cast<unsigned>(keys_.at(phase).size());
        out << "| " << nameOf(phase) << " | " << calls << " | " << sumOf(counts) << " |";
        totals[0] += calls;
        totals[1] += sumOf(counts);
        for (std::size_t failure = 0; failure < kFailures; ++failure) {
            out << " " << counts[failure] << " |";
            totals[failure + 2] += counts[failure];
        }
        out << "\n";
    }
    out << "| all |";
    for (const unsigned total : totals) {
        out << " " << total << " |";
    }
    out << "\n";
    return out.str();
}

std::string Tried::operationsText() const
{
    std::ostringstream out;
    out << "| operation |";
    for (const auto& [phase, counts] : byPhase_) {
        out << " " << nameOf(phase) << " |";
    }
    out << "\n" << ruler(byPhase_.size());
    for (const auto& [operation, counts] : byOperation_) {
        out << "| `" << operation << "` |";
        for (const auto& [phase, unused] : byPhase_) {
            const unsigned count = counts[static_cast<std::size_t>(phase)];
            out << " " << (count == 0 ? std::string() : std::to_string(count)) << " |";
        }
        out << "\n";
    }
    return out.str();
}

} // namespace kxcampaign
