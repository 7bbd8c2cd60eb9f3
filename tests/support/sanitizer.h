// What the sanitizers cannot follow.
#ifndef KX_TEST_SANITIZER_H
#define KX_TEST_SANITIZER_H

namespace kxtest {

/// Whether a thread may be cancelled. AddressSanitizer does not see that a cancelled thread leaves
/// its frames, and takes what lies on the stack there afterwards for a fault.
#ifdef __SANITIZE_ADDRESS__
inline constexpr bool kMayCancel = false;
#else
inline constexpr bool kMayCancel = true;
#endif
inline constexpr const char* kMayNotCancel = "AddressSanitizer cannot follow a cancelled thread";

} // namespace kxtest

#endif
