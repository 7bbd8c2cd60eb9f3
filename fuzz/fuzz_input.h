// What the fuzz targets share: the input, taken apart into values, and the check of a promise.
#ifndef KX_FUZZ_INPUT_H
#define KX_FUZZ_INPUT_H

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>

/// The one function of a target, by the name that libFuzzer calls. Takes any bytes; ends the
/// process when the code under test breaks a promise. Always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the process unless the condition holds: a promise is broken.
#define KX_MUST(CONDITION)                                                                         \
    do {                                                                                           \
        if (!(CONDITION)) {                                                                        \
            kxfuzz::broken(__FILE__, __LINE__, #CONDITION);                                        \
        }                                                                                          \
    } while (false)

namespace kxfuzz {

using Input = std::span<const std::uint8_t>;

[[noreturn]] inline void broken(const char* file, int line, const char* condition)
{
    std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, condition);
    std::abort();
}

inline std::string_view textOf(Input input)
{
    return {reinterpret_cast<const char*>(input.data()), input.size()};
}

/// Reads an input from its begin. Behind the end everything is 0.
class Bytes {
public:
    explicit Bytes(Input input) : left_(input) {}

    bool empty() const { return left_.empty(); }
    Input rest() const { return left_; }

    /// The next bytes as a number, a float or the like; the machine's byte order.
    template <typename T>
    T take()
    {
        std::array<std::uint8_t, sizeof(T)> bytes{};
        const std::size_t count = std::min(bytes.size(), left_.size());
        std::copy_n(left_.begin(), count, bytes.begin());
        left_ = left_.subspan(count);
        T value{};
        std::memcpy(&value, bytes.data(), sizeof(T));
        return value;
    }

    /// A number from `low` to `high`, of one byte where that suffices.
    template <std::unsigned_integral T>
    T within(T low, T high)
    {
        const auto span = static_cast<std::uint64_t>(high) - low;
        const std::uint64_t raw =
            span <= 0xFF ? take<std::uint8_t>()
                         : (span <= 0xFFFF ? take<std::uint16_t>() : take<std::uint32_t>());
        return static_cast<T>(low + raw % (span + 1));
    }

    bool flag() { return (take<std::uint8_t>() & 1U) != 0; }

    /// One of several.
    template <typename T>
    const T& of(std::span<const T> choices)
    {
        return choices[within<std::size_t>(0, choices.size() - 1)];
    }

private:
    Input left_;
};

} // namespace kxfuzz

#endif
