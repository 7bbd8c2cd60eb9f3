// The properties of one camera: their ranges and what they are set to.
#ifndef FCSIM_PROPERTY_BANK_H
#define FCSIM_PROPERTY_BANK_H

#include "description/bus_description.h"

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

    /// What is in force. REQUIRES: a property that cameras can have.
    const FlyCapture2::Property& value(FlyCapture2::PropertyType type) const;
    /// Ranges as they are now. REQUIRES: a property that cameras can have.
    const FlyCapture2::PropertyInfo& range(FlyCapture2::PropertyType type) const;
    /// Grid of the absolute values, counted from the smallest one; 0 = none.
    float step(FlyCapture2::PropertyType type) const;
    bool switchedOn(FlyCapture2::PropertyType type) const; ///< present and on
    bool automatic(FlyCapture2::PropertyType type) const;  ///< on, and the camera sets its value
    bool manual(FlyCapture2::PropertyType type) const;     ///< on, and keeps what it was set to

    // ---- What the camera itself changes.

    /// Replaces the upper end of the range; the value follows downwards, and upwards again as far
    /// as it was asked for.
    void limit(FlyCapture2::PropertyType type, float absMax);
    /// Sets the absolute value, on its grid and in its range, whatever the mode.
    void steer(FlyCapture2::PropertyType type, float absolute);
    /// Sets the relative values, in their range, whatever the mode.
    void steerRaw(FlyCapture2::PropertyType type, unsigned valueA, unsigned valueB);
    /// The automatic function that one push started has found its value.
    void endPush(FlyCapture2::PropertyType type);

private:
    struct Entry {
        PropertyDescription description;
        FlyCapture2::PropertyInfo info;
        FlyCapture2::Property value;
        float asked = 0; ///< absolute value that was asked for, before `limit`
    };

    static Entry makeEntry(FlyCapture2::PropertyType type, const PropertyDescription& description);
    FlyCapture2::Error setAbsolute(Entry& entry, const FlyCapture2::Property& property);
    static void takeAbsolute(Entry& entry, float wanted);
    FlyCapture2::Error setRaw(Entry& entry, const FlyCapture2::Property& property);

    std::array<Entry, kPropertyCount> entries_;
};

} // namespace fcsim

#endif
