// A configuration on its way from the thread that reads files to the one that grabs.
#ifndef KXHOST_CONFIG_OFFER_H
#define KXHOST_CONFIG_OFFER_H

#include "base/handover_slot.h"
#include "config/settings.h"
#include "export/config_history.h"

#include <string>
#include <vector>

namespace kxhost {

/// A whole configuration that waits to be taken over.
struct ConfigOffer {
    Settings settings;
    std::string file;              ///< as the user named it; empty = there is none
    std::string changed;           ///< the keys that differ, for people; empty = none
    std::vector<KeyValue> values;  ///< these keys and what they are now
    std::vector<KeyValue> wayBack; ///< and what they were
};

using OfferSlot = HandoverSlot<ConfigOffer>;

/// The two ways by which a changed configuration comes to the grab.
struct ConfigOffers {
    OfferSlot live;   ///< differs in live keys only
    OfferSlot reload; ///< asked for by a signal
};

} // namespace kxhost

#endif
