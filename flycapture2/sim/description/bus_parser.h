// Reads bus descriptions in TOML.
#ifndef FCSIM_BUS_PARSER_H
#define FCSIM_BUS_PARSER_H

#include "description/bus_description.h"

#include <string>
#include <string_view>

namespace fcsim {

/// A description, or what is wrong with it: "file:line: key: ...".
struct ParsedBus {
    BusDescription bus;
    std::string problem; ///< empty = nothing
};

/// Reads a description; `name` stands for the file in messages.
ParsedBus parseBus(std::string_view toml, std::string_view name);
/// The same from a file. Relative paths in it start at its folder.
ParsedBus parseBusFile(const std::string& file);

} // namespace fcsim

#endif
