// Finds the word that somebody may have meant.
#ifndef KXHOST_SUGGEST_H
#define KXHOST_SUGGEST_H

#include <span>
#include <string>
#include <string_view>

namespace kxhost {

/// Number of letters to add, drop, change or swap with a neighbour to make one word of the other.
std::size_t editDistance(std::string_view one, std::string_view other);

/// The known word nearest to `given`; empty when none is near enough to be a slip of the pen.
std::string_view nearestWord(std::string_view given, std::span<const std::string_view> known);

} // namespace kxhost

#endif
