// Finds the word that somebody may have meant: edit distance with swaps of neighbours.
#include "config/suggest.h"

#include <algorithm>
#include <vector>

namespace kxhost {

std::size_t editDistance(std::string_view one, std::string_view other)
{
    const std::size_t width = other.size() + 1;
    std::vector<std::size_t> cells((one.size() + 1) * width);
    const auto at = [&](std::size_t row, std::size_t column) -> std::size_t& {
        return cells[row * width + column];
    };
    for (std::size_t row = 0; row <= one.size(); ++row) {
        for (std::size_t column = 0; column <= other.size(); ++column) {
            if (row == 0 || column == 0) {
                at(row, column) = row + column;
                continue;
            }
            const std::size_t change = one[row - 1] == other[column - 1] ? 0 : 1;
            at(row, column) = std::min({at(row - 1, column) + 1, at(row, column - 1) + 1,
                                        at(row - 1, column - 1) + change});
            if (row > 1 && column > 1 && one[row - 1] == other[column - 2] &&
                one[row - 2] == other[column - 1]) {
                at(row, column) = std::min(at(row, column), at(row - 2, column - 2) + 1);
            }
        }
    }
    return at(one.size(), other.size());
}

std::string_view nearestWord(std::string_view given, std::span<const std::string_view> known)
{
    std::string_view nearest;
    std::size_t best = std::max<std::size_t>(2, given.size() / 3) + 1;
    for (const std::string_view word : known) {
        const std::size_t distance = editDistance(given, word);
        if (distance < best && distance < std::max(given.size(), word.size())) {
            best = distance;
            nearest = word;
        }
    }
    return nearest;
}

} // namespace kxhost
