// Reads the faults in the description of one camera.
#ifndef FCSIM_FAULT_PARSER_H
#define FCSIM_FAULT_PARSER_H

#include "description/bus_description.h"
#include "description/toml_reader.h"

namespace fcsim {

/// Reads the tables `fault` and `call_fault` of a camera whose other keys were read. Throws
/// `DescriptionError`.
void readFaults(TableReader& table, CameraDescription& camera);

} // namespace fcsim

#endif
