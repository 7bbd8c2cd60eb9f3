// Names of the I/O box's pins, as configurations and messages show them.
#ifndef KX_IOBOX_H
#define KX_IOBOX_H

#include <cstdint>

/// One pin name, filled up with zeros, and the pin's id, which is also its row.
struct KxCfgIoPin {
    char name[128];
    std::uint32_t id;
};

/// All pins that an I/O box may have. Each source file that uses it has its own copy.
static constexpr KxCfgIoPin KxCfgIoPinMapT[] = {
    {"None", 0},   {"Line1", 1},  {"Line2", 2},  {"Line3", 3}, {"Line4", 4},
    {"Out1", 5},   {"Out2", 6},   {"Out3", 7},   {"Out4", 8},  {"Gpio0", 9},
    {"Gpio1", 10}, {"Gpio2", 11}, {"Gpio3", 12},
};

#endif
