// Lines of YUV pixels to RGB: ITU-R BT.601, full range (Y, U and V from 0 to 255, U and V around
// 128).
#ifndef KXHOST_PICTURE_YUV_H
#define KXHOST_PICTURE_YUV_H

#include <cstdint>

namespace kxhost {

/// One line of U Y Y V Y Y (four pixels in six bytes) to R G B. Thread-safe, as the next one.
void yuv411ToRgb(const std::uint8_t* in, std::uint32_t width, std::uint8_t* out);
/// One line of U Y V Y (two pixels in four bytes) to R G B.
void yuv422ToRgb(const std::uint8_t* in, std::uint32_t width, std::uint8_t* out);

} // namespace kxhost

#endif
