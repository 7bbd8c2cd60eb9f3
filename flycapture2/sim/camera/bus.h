// The simulated bus of this process: the cameras on it, and what is wrong with its description.
#ifndef FCSIM_BUS_H
#define FCSIM_BUS_H

#include "camera/device.h"

#include <FlyCapture2.h>

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace fcsim {

/// All cameras, loaded at first use from the file that the environment names or from the built-in
/// default. Thread-safe; the cameras found stay valid until the bus is loaded anew.
class Bus {
public:
    /// The one bus of the process.
    static Bus& instance();

    /// What is wrong with the description that should have been loaded; empty = nothing. The bus is
    /// empty then.
    std::string problem();
    /// The cameras that are on the bus now, in bus order.
    std::vector<Device*> attached();
    /// The camera with that guid or serial number that is on the bus, null = none.
    Device* find(const FlyCapture2::PGRGuid& guid);
    Device* find(unsigned serial);
    /// The same without looking whether it is attached.
    Device* known(unsigned serial);

    /// Back to the bus of the environment; `load` replaces it. See `loadBus`.
    void reload();
    std::string load(std::string_view toml, std::string_view name);

private:
    Bus();
    void loadFromEnvironment();
    void replace(const BusDescription& description);

    std::mutex mutex_;
    std::string problem_;
    std::vector<std::unique_ptr<Device>> devices_;
};

} // namespace fcsim

#endif
