// The buffer factory: checks that the host's frame memory is one flat block of equal slots.
#include "kx_pg_factory.h"

#include "kx_host.h"
#include "kx_log.h"

#include <cstdint>
#include <limits>

#include <sched.h>

#define KX_LOG_TAG "KX_PG_FACTORY"

namespace KxPGrey {

CBufferFactory::CBufferFactory() = default;

CBufferFactory::~CBufferFactory() = default;

namespace {

/// The distance of the host's slots: `found` is false when they are not flat.
struct Flat {
    bool found = true;
    std::uintptr_t step = 0; ///< 0 with a single slot
};

Flat walkSlots(unsigned int askedSize, unsigned int count)
{
    // A host may claim any number of slots: of a pool that is not flat, no more than these are
    // shown, and none behind one that is not there.
    constexpr unsigned int kShown = 1000;
    Flat flat;
    std::uintptr_t previous = 0;
    for (unsigned int index = 0; index < count; ++index) {
        void* const slot = KxGiMem__GetBufPtr(index);
        KX_LOG_D_AS("GetBuffer", "AllocBuffer: asked size %u - idx=%u buff %p (cpu=%u)\n",
                    askedSize, index, slot, static_cast<unsigned int>(sched_getcpu()));
        const auto address = reinterpret_cast<std::uintptr_t>(slot);
        const std::uintptr_t step = address - previous;
        if (index == 1) {
            flat.step = step;
            // The distance is handed on in 32 bits.
            flat.found = step <= std::numeric_limits<unsigned int>::max();
        }
        if (index > 0) {
            flat.found = flat.found && address > previous && step >= askedSize && step == flat.step;
        }
        if (!flat.found && (slot == nullptr || index >= kShown)) {
            break;
        }
        previous = address;
    }
    return flat;
}

} // namespace

void* CBufferFactory::GetBuffer(unsigned int* size, unsigned int count)
{
    if (size == nullptr || *size == 0 || count == 0) {
        KX_LOG_W("Incorrect input params detected\n");
        return nullptr;
    }
    void* const head = KxGiMem__GetBufPtr(0);
    if (head == nullptr) {
        KX_LOG_W("The buffer flat zero head found\n");
        return nullptr;
    }
    const Flat flat = walkSlots(*size, count);
    if (!flat.found) {
        KX_LOG_E("Allocated buffer flat is incorrect !\n");
        base = nullptr;
        return nullptr;
    }
    if (flat.step != 0) {
        const unsigned int askedSize = *size;
        *size = static_cast<unsigned int>(flat.step);
        KX_LOG_I("return flat buffer: %p, block size %u (asked %u)\n", head, *size, askedSize);
    }
    base = head;
    return base;
}

} // namespace KxPGrey
