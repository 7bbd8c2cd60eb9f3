// The text log of a simulated I/O box, for people: one line for each command and each answer.
#ifndef FCSIM_IO_BOX_TEXT_H
#define FCSIM_IO_BOX_TEXT_H

#include "control/sim_control.h"

#include <cstdio>
#include <memory>
#include <string>

namespace fcsim {

/// "<seconds since 1970> command 0x00000392 10 bits, good"; the time is that of the last pulse.
std::string commandLine(const IoBoxEntry& entry);
/// "<seconds since 1970> reply   0x00000123 10 bits, 0.568 s"; when it begins and how long it
/// takes. REQUIRES: the entry has been answered.
std::string replyLine(const IoBoxEntry& entry);

/// Appends lines to a file, which is made with the first of them. A file that cannot be written is
/// reported once on standard error. Not thread-safe.
class IoBoxText {
public:
    /// An empty path: nothing is written.
    explicit IoBoxText(std::string path) : path_(std::move(path)) {}

    void add(const IoBoxEntry& entry);

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    bool open();

    std::string path_;
    std::unique_ptr<std::FILE, Close> file_;
    bool tried_ = false;
};

} // namespace fcsim

#endif
