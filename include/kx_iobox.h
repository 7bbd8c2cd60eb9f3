// The I/O box's pins: their names, and what a host says about them.
//
// Three settings of pins at most are looked at. The host services give for each of them:
//
//   GetIoboxPin   the id of a row of the table below; cameras have Gpio0 to Gpio3
//   GetIoboxMod   1 output, 2 input; a strobe is off in any mode but 1, data need 1 or 2
//   GetIoboxSrc   2 or 3 strobe, 5 data words; any other switches a strobe off
//   GetIoboxInv   0 no; 2 yes: the pulse of a strobe is low, the line of data output rests high
//   GetIoboxPar   number 0 and 1, -1 = as the camera has it, or the default:
//                 strobe       delay and duration of the pulse in microseconds
//                 data output  number of bits, 1 to 32, and the word; both are needed
//                 data input   polls until a reply is given up (10000), polls of rest that end a
//                              symbol (12)
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
