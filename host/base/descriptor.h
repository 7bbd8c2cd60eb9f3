// A file descriptor that is closed by itself.
#ifndef KXHOST_DESCRIPTOR_H
#define KXHOST_DESCRIPTOR_H

#include <cerrno>
#include <system_error>

#include <unistd.h>

namespace kxhost {

/// Owns a file descriptor.
class Descriptor {
public:
    /// Takes what a system call returned; throws `what` with the system's reason when it failed.
    Descriptor(int number, const char* what) : number_(number)
    {
        if (number_ < 0) {
            throw std::system_error(errno, std::generic_category(), what);
        }
    }
    ~Descriptor() { close(number_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int number() const { return number_; }

private:
    int number_;
};

} // namespace kxhost

#endif
