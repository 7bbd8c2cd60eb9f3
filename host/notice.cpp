// What kxhost tells its user while it runs.
#include "notice.h"

#include <cstdio>

#include <unistd.h>

namespace kxhost {

void complain(const std::string& sentence)
{
    const char* const clear = isatty(STDERR_FILENO) != 0 ? "\r\033[K" : "";
    std::fprintf(stderr, "%skxhost: %s\n", clear, sentence.c_str());
}

} // namespace kxhost
