// What the levels of a picture say about it as a whole.
#include "picture_levels.h"

#include <algorithm>
#include <set>

namespace kxtest {

double meanLevel(const ReadPicture& picture, std::size_t channel)
{
    double sum = 0;
    for (std::size_t i = channel; i < picture.samples.size(); i += picture.channels) {
        sum += picture.samples[i];
    }
    return sum * picture.channels / static_cast<double>(picture.samples.size());
}

unsigned spreadOfLevels(const ReadPicture& picture)
{
    std::vector<std::uint16_t> sorted = picture.samples;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t hundredth = sorted.size() / 100;
    return sorted.at(sorted.size() - 1 - hundredth) - sorted.at(hundredth);
}

std::size_t countLevels(const ReadPicture& picture)
{
    return std::set(picture.samples.begin(), picture.samples.end()).size();
}

} // namespace kxtest
