// The look-up tables of one camera.
#include "camera/lut_store.h"

#include "base/sdk_error.h"

#include <algorithm>
#include <string>

namespace fcsim {

using FlyCapture2::Error;

LutStore::LutStore(const LutDescription& description) : description_(description)
{
    if (!description.supported) {
        return;
    }
    const auto line = std::make_shared<SensorLut>();
    line->inputBits = description.inputBits;
    line->outputBits = description.outputBits;
    const unsigned most = (1U << description.outputBits) - 1;
    std::vector<std::uint16_t> channel;
    for (unsigned entry = 0; entry < description.entries; ++entry) {
        const unsigned wide = entry << description.outputBits;
        channel.push_back(
            static_cast<std::uint16_t>(std::min(wide >> description.inputBits, most)));
    }
    line->channels.assign(description.channels, channel);
    banks_.assign(description.banks, line);
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
        std::copy_n(banks_[bank]->channels[channel].begin(), count, entries);
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
    const auto changed = std::make_shared<SensorLut>(*banks_[bank]);
    std::transform(
        entries, entries + count, changed->channels[channel].begin(),
        [most](unsigned entry) { return static_cast<std::uint16_t>(std::min(entry, most)); });
    banks_[bank] = changed;
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

} // namespace fcsim
