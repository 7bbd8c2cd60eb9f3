// The text log of a simulated I/O box, for people: one line for each command and each answer.
#include "pins/io_box_text.h"

#include <cerrno>
#include <cinttypes>
#include <cstring>

namespace fcsim {

namespace {

constexpr std::uint64_t kUsPerSecond = 1'000'000;

const char* verdictText(IoBoxVerdict verdict)
{
    switch (verdict) {
    case IoBoxVerdict::good:
        return "good";
    case IoBoxVerdict::wrongParity:
        return "wrong parity";
    case IoBoxVerdict::garbled:
        return "garbled";
    case IoBoxVerdict::stuck:
        return "line stuck at its active level";
    }
    return "";
}

std::string wordText(std::uint64_t atUs, const char* what, std::uint32_t word, unsigned bits)
{
    char text[80];
    std::snprintf(text, sizeof text, "%" PRIu64 ".%06" PRIu64 " %s 0x%08" PRIX32 " %u bits, ",
                  atUs / kUsPerSecond, atUs % kUsPerSecond, what, word, bits);
    return text;
}

} // namespace

std::string commandLine(const IoBoxEntry& entry)
{
    return wordText(entry.lastEdgeUs, "command", entry.word, entry.bits) +
           verdictText(entry.verdict);
}

std::string replyLine(const IoBoxEntry& entry)
{
    char length[24];
    std::snprintf(length, sizeof length, "%.3f s",
                  static_cast<double>(entry.replyEndUs - entry.replyStartUs) / kUsPerSecond);
    return wordText(entry.replyStartUs, "reply  ", entry.replyWord, entry.replyBits) + length;
}

void IoBoxText::add(const IoBoxEntry& entry)
{
    if (path_.empty() || !open()) {
        return;
    }
    std::fprintf(file_.get(), "%s\n", commandLine(entry).c_str());
    if (entry.answered) {
        std::fprintf(file_.get(), "%s\n", replyLine(entry).c_str());
    }
    std::fflush(file_.get());
}

bool IoBoxText::open()
{
    if (!tried_) {
        tried_ = true;
        file_.reset(std::fopen(path_.c_str(), "ae"));
        if (!file_) {
            std::fprintf(stderr, "libflycapture (simulated): %s: cannot be written: %s\n",
                         path_.c_str(), std::strerror(errno));
        }
    }
    return file_ != nullptr;
}

} // namespace fcsim
