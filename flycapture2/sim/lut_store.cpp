// The look-up tables of one camera.
#include "lut_store.h"

#include "sdk_error.h"

#include <algorithm>
#include <string>

namespace fcsim {

using FlyCapture2::Error;

LutStore::LutStore(const LutDescription& description) : description_(description)
{
    if (!description.supported) {
        return;
    }
    const unsigned tables = description.banks * description.channels;
    entries_.reserve(std::size_t{tables} * description.entries);
    for (unsigned table = 0; table < tables; ++table) {
        for (unsigned entry = 0; entry < description.entries; ++entry) {
            const unsigned wide = entry << description.outputBits;
            entries_.push_back(wide >> description.inputBits);
        }
    }
}

Error LutStore::info(FlyCapture2::LUTData& data) const
{
    data = FlyCapture2::LUTData();
    data.supported = description_.supported;
    if (!description_.supported) {
        return success();
    }
    data.enabled = enabled_;
    data.numBanks = description_.banks;
    data.numChannels = description_.channels;
    data.inputBitDepth = description_.inputBits;
    data.outputBitDepth = description_.outputBits;
    data.numEntries = description_.entries;
    return success();
}

Error LutStore::bankInfo(unsigned bank, bool& readable, bool& writable) const
{
    Error error = checkBank(bank);
    readable = error == FlyCapture2::PGRERROR_OK;
    writable = readable;
    return error;
}

Error LutStore::activeBank(unsigned& bank) const
{
    bank = active_;
    return checkBank(active_);
}

Error LutStore::setActiveBank(unsigned bank)
{
    Error error = checkBank(bank);
    if (error == FlyCapture2::PGRERROR_OK) {
        active_ = bank;
    }
    return error;
}

Error LutStore::enable(bool on)
{
    Error error = checkBank(active_);
    enabled_ = on && error == FlyCapture2::PGRERROR_OK;
    return error;
}

Error LutStore::read(unsigned bank, unsigned channel, unsigned count, unsigned* entries) const
{
    Error error = check(bank, channel, count, entries);
    if (error == FlyCapture2::PGRERROR_OK) {
        std::copy_n(&entries_[start(bank, channel)], count, entries);
    }
    return error;
}

Error LutStore::write(unsigned bank, unsigned channel, unsigned count, const unsigned* entries)
{
    Error error = check(bank, channel, count, entries);
    if (error != FlyCapture2::PGRERROR_OK) {
        return error;
    }
    const unsigned most = (1U << description_.outputBits) - 1;
    std::transform(entries, entries + count, &entries_[start(bank, channel)],
                   [most](unsigned entry) { return std::min(entry, most); });
    return error;
}

Error LutStore::checkBank(unsigned bank) const
{
    if (!description_.supported) {
        return makeError(FlyCapture2::PGRERROR_NOT_SUPPORTED, "the camera has no look-up table");
    }
    if (bank >= description_.banks) {
        return makeError(FlyCapture2::PGRERROR_LUT_FAILED,
                         "there is no look-up table bank " + std::to_string(bank));
    }
    return success();
}

Error LutStore::check(unsigned bank, unsigned channel, unsigned count,
                      const unsigned* entries) const
{
    Error error = checkBank(bank);
    if (error != FlyCapture2::PGRERROR_OK) {
        return error;
    }
    if (channel >= description_.channels || count > description_.entries || entries == nullptr) {
        return makeError(FlyCapture2::PGRERROR_INVALID_PARAMETER,
                         "look-up table channel " + std::to_string(channel) + " with " +
                             std::to_string(count) + " entries");
    }
    return success();
}

std::size_t LutStore::start(unsigned bank, unsigned channel) const
{
    return std::size_t{bank * description_.channels + channel} * description_.entries;
}

} // namespace fcsim
