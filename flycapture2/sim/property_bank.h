// The properties of one camera: their ranges and what they are set to.
#ifndef FCSIM_PROPERTY_BANK_H
#define FCSIM_PROPERTY_BANK_H

#include "bus_description.h"

#include <FlyCapture2.h>

#include <array>

namespace fcsim {

/// Name of a property as the SDK spells it, "property N" beyond the last one.
const char* propertyName(FlyCapture2::PropertyType type);

/// Ranges and values of all properties. Not thread-safe.
class PropertyBank {
public:
    explicit PropertyBank(const std::array<PropertyDescription, kPropertyCount>& descriptions);

    FlyCapture2::Error info(FlyCapture2::PropertyInfo& info) const;
    FlyCapture2::Error get(FlyCapture2::Property& property) const;
    /// Checks presence and ranges; on failure nothing changes.
    FlyCapture2::Error set(const FlyCapture2::Property& property);

    float absolute(FlyCapture2::PropertyType type) const;
    unsigned raw(FlyCapture2::PropertyType type) const;
    bool present(FlyCapture2::PropertyType type) const;
    bool switchedOn(FlyCapture2::PropertyType type) const; ///< present and on
    /// Replaces the upper end of the absolute range; the value follows downwards, and upwards again
    /// as far as it was asked for.
    void limit(FlyCapture2::PropertyType type, float absMax);

private:
    struct Entry {
        PropertyDescription description;
        FlyCapture2::PropertyInfo info;
        FlyCapture2::Property value;
        float asked = 0; ///< absolute value that was asked for, before `limit`
    };

    static Entry makeEntry(FlyCapture2::PropertyType type, const PropertyDescription& description);
    FlyCapture2::Error setAbsolute(Entry& entry, const FlyCapture2::Property& property);
    FlyCapture2::Error setRaw(Entry& entry, const FlyCapture2::Property& property);

    std::array<Entry, kPropertyCount> entries_;
};

} // namespace fcsim

#endif
