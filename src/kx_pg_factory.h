// The buffer factory: checks that the host's frame memory is one flat block of equal slots.
#ifndef KX_PG_FACTORY_H
#define KX_PG_FACTORY_H

#include "kx_export.h"

namespace KxPGrey {

/// Finds the host's frame buffers. Grab thread only.
class CBufferFactory {
public:
    KX_API CBufferFactory();
    KX_API ~CBufferFactory(); // NOLINT(performance-trivially-destructible): a symbol of its own
    CBufferFactory(const CBufferFactory&) = delete;
    CBufferFactory& operator=(const CBufferFactory&) = delete;

    /// Looks at the host's slots 0 to `count` - 1, which must rise in equal steps of at least
    /// `*size` bytes. Returns the address of the first and writes the step to `*size` (with one
    /// slot it stays as asked); callers must use it as the distance between frames. Returns null,
    /// after a message, when the arguments are empty, there is no slot 0, or the slots are not
    /// flat.
    KX_API void* GetBuffer(unsigned int* size, unsigned int count);

    /// The pool that was accepted last; null after a pool that is not flat.
    void* base = nullptr;
};

} // namespace KxPGrey

/// The one factory of the process.
extern KX_API KxPGrey::CBufferFactory kxBufFactory;

#endif
