// Reads the description of an I/O box.
#ifndef FCSIM_IO_BOX_PARSER_H
#define FCSIM_IO_BOX_PARSER_H

#include "description/io_box_description.h"
#include "description/toml_reader.h"

namespace fcsim {

/// Reads one `[[camera.io_box]]` table of a camera with `pins` GPIO pins. Throws
/// `DescriptionError`.
IoBoxDescription readIoBox(TableReader& table, unsigned pins);

} // namespace fcsim

#endif
