// The look-up tables of one camera.
#ifndef FCSIM_LUT_STORE_H
#define FCSIM_LUT_STORE_H

#include "description/bus_description.h"
#include "scene/sensor_state.h"

#include <FlyCapture2.h>

#include <memory>
#include <vector>

namespace fcsim {

/// Banks of tables, straight lines at power-up. Frames share the tables of their bank, so a write
/// makes new ones instead of changing them. Not thread-safe.
class LutStore {
public:
    explicit LutStore(const LutDescription& description);

    FlyCapture2::Error info(FlyCapture2::LUTData& data) const;
    FlyCapture2::Error bankInfo(unsigned bank, bool& readable, bool& writable) const;
    FlyCapture2::Error activeBank(unsigned& bank) const;
    FlyCapture2::Error setActiveBank(unsigned bank);
    FlyCapture2::Error enable(bool on);
    FlyCapture2::Error read(unsigned bank, unsigned channel, unsigned count,
                            unsigned* entries) const;
    FlyCapture2::Error write(unsigned bank, unsigned channel, unsigned count,
                             const unsigned* entries);

    /// The tables that frames go through now; null while they are switched off.
    std::shared_ptr<const SensorLut> inForce() const
    {
        return enabled_ ? banks_[active_] : nullptr;
    }

private:
    /// Why the table cannot be reached; OK when it can.
    FlyCapture2::Error check(unsigned bank, unsigned channel, unsigned count,
                             const unsigned* entries) const;
    FlyCapture2::Error checkBank(unsigned bank) const;

    LutDescription description_;
    bool enabled_ = false;
    unsigned active_ = 0;
    std::vector<std::shared_ptr<const SensorLut>> banks_;
};

} // namespace fcsim

#endif
