// The camera's general-purpose pins.
#ifndef KX_GPIO_H
#define KX_GPIO_H

namespace KxPGrey {

/// Number of a pin of the camera's connector, as the camera itself counts them; also the source
/// number of the pin's strobe. There are no others, and nobody checks.
enum pg_pins : unsigned int { kPgPin0 = 0, kPgPin1 = 1, kPgPin2 = 2, kPgPin3 = 3 };

inline constexpr unsigned int kPgPinCount = 4;

} // namespace KxPGrey

#endif
