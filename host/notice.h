// What kxhost tells its user while it runs.
#ifndef KXHOST_NOTICE_H
#define KXHOST_NOTICE_H

#include <string>

namespace kxhost {

/// Writes one sentence to standard error, in place of a progress line that stands there. Any
/// thread.
void complain(const std::string& sentence);

} // namespace kxhost

#endif
