// The look-up tables of one camera.
#ifndef FCSIM_LUT_STORE_H
#define FCSIM_LUT_STORE_H

#include "bus_description.h"

#include <FlyCapture2.h>

#include <vector>

namespace fcsim {

/// Banks of tables; bank 0 holds the straight line and can only be read. Not thread-safe.
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

private:
    /// Why the table cannot be reached; OK when it can.
    FlyCapture2::Error check(unsigned bank, unsigned channel, unsigned count,
                             const unsigned* entries) const;
    FlyCapture2::Error checkBank(unsigned bank) const;
    std::size_t start(unsigned bank, unsigned channel) const;

    LutDescription description_;
    bool enabled_ = false;
    unsigned active_ = 0;
    std::vector<unsigned> entries_; ///< bank by bank, in each channel by channel
};

} // namespace fcsim

#endif
