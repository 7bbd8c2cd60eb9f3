// What the levels of a picture say about it as a whole.
#ifndef KX_TEST_PICTURE_LEVELS_H
#define KX_TEST_PICTURE_LEVELS_H

#include "read_picture.h"

#include <cstddef>

namespace kxtest {

/// Mean of one channel, in the samples' own steps.
double meanLevel(const ReadPicture& picture, std::size_t channel = 0);

/// Distance between the levels below and above which a hundredth of a grey picture lies: how much
/// of the range of levels it uses.
unsigned spreadOfLevels(const ReadPicture& picture);

/// How many different levels a grey picture has.
std::size_t countLevels(const ReadPicture& picture);

} // namespace kxtest

#endif
