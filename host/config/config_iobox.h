// The settings of [[iobox]]: what they demand of each other, which have no effect, what they mean.
#ifndef KXHOST_CONFIG_IOBOX_H
#define KXHOST_CONFIG_IOBOX_H

#include "config/config.h"

namespace kxhost {

/// Finds settings of pins that lack something, contradict themselves or each other.
ConfigErrors checkIobox(const Configuration& configuration);

/// As `hintOn`, for a key that was given, and `meaningOf`; for the table number `index`.
std::string ioboxHint(const Configuration& configuration, const Key& key, std::size_t index);
std::string ioboxMeaning(const Configuration& configuration, const Key& key, std::size_t index);

} // namespace kxhost

#endif
