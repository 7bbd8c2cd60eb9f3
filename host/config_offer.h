// A configuration on its way from the thread that reads files to the one that grabs.
#ifndef KXHOST_CONFIG_OFFER_H
#define KXHOST_CONFIG_OFFER_H

#include "config_history.h"
#include "settings.h"

#include <atomic>
#include <memory>
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

/// Holds one offer, the latest. Any thread may offer, withdraw and take; whoever takes it owns it.
/// No lock: the offer is complete before the pointer is handed over (release), and is read behind
/// that (acquire).
class OfferSlot {
public:
    OfferSlot() = default;
    ~OfferSlot() { take(); }
    OfferSlot(const OfferSlot&) = delete;
    OfferSlot& operator=(const OfferSlot&) = delete;

    /// Replaces what is there and has not been taken.
    void put(std::unique_ptr<ConfigOffer> offer) { own(offer_.exchange(offer.release())); }
    /// Null = there is none, which is one load.
    std::unique_ptr<ConfigOffer> take()
    {
        return offer_.load(std::memory_order_relaxed) == nullptr ? nullptr
                                                                 : own(offer_.exchange(nullptr));
    }

private:
    static std::unique_ptr<ConfigOffer> own(ConfigOffer* offer)
    {
        return std::unique_ptr<ConfigOffer>(offer);
    }

    std::atomic<ConfigOffer*> offer_ = nullptr;
};

/// The two ways by which a changed configuration comes to the grab.
struct ConfigOffers {
    OfferSlot live;   ///< differs in live keys only
    OfferSlot reload; ///< asked for by a signal
};

} // namespace kxhost

#endif
