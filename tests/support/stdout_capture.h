// Catches what goes to standard output.
#ifndef KX_TEST_STDOUT_CAPTURE_H
#define KX_TEST_STDOUT_CAPTURE_H

#include <cstddef>
#include <string>
#include <vector>

namespace kxtest {

/// From construction to `lines` (or destruction) standard output goes to memory. Check results only
/// after `lines`: what a failing check prints meanwhile would be caught too.
class StdoutCapture {
public:
    StdoutCapture();
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    /// Ends the capture and returns what came, without the ends of the lines.
    std::vector<std::string> lines();
    /// Bytes caught so far that are no longer in the stream's buffer.
    std::size_t size() const;

private:
    std::string stop();

    int saved_ = -1;
    int memory_ = -1;
};

} // namespace kxtest

#endif
