// Reads the faults in the description of one camera.
#include "description/fault_parser.h"

#include <cmath>
#include <initializer_list>
#include <utility>

namespace fcsim {

namespace {

constexpr std::initializer_list<std::pair<const char*, FrameFaultKind>> kKinds{
    {"lose", FrameFaultKind::lose},       {"error", FrameFaultKind::error},
    {"corrupt", FrameFaultKind::corrupt}, {"counter", FrameFaultKind::counter},
    {"stall", FrameFaultKind::stall},     {"clock_step", FrameFaultKind::clockStep},
    {"detach", FrameFaultKind::detach}};

/// Seconds until a camera is back; 0 = it stays away.
std::uint64_t readBackAfter(TableReader& table)
{
    constexpr double kShortestS = 1e-6;
    constexpr double kLongestS = 1e9;
    constexpr double kUsPerS = 1e6;
    double seconds = 0;
    table.number("back_after", seconds, kShortestS, kLongestS);
    return static_cast<std::uint64_t>(std::llround(seconds * kUsPerS));
}

/// A region that the camera can have lies on the grid of its sizes.
void checkSize(const TableReader& table, const Return& comesBack, const Format7Description& rules)
{
    const bool fits = comesBack.maxWidth <= rules.maxWidth &&
                      comesBack.maxHeight <= rules.maxHeight && comesBack.maxWidth > 0 &&
                      comesBack.maxHeight > 0 &&
                      (rules.sizeHStep == 0 || comesBack.maxWidth % rules.sizeHStep == 0) &&
                      (rules.sizeVStep == 0 || comesBack.maxHeight % rules.sizeVStep == 0);
    if (!fits) {
        table.fail("back_max_size",
                   "must be two multiples of size_steps, not above the largest region");
    }
}

FrameFault readFault(TableReader& table, const CameraDescription& camera)
{
    FrameFault fault;
    table.require("kind");
    table.choice("kind", fault.kind, kKinds);
    table.require("frame");
    table.integer("frame", fault.frame, 0, INT64_MAX);
    table.integer("count", fault.count, 1, INT64_MAX);
    table.number("amount", fault.amount, -1e12, 1e12);
    table.text("text", fault.text);
    if (fault.kind == FrameFaultKind::detach) {
        table.integer("times", fault.times, 0, UINT32_MAX);
        fault.comesBack.afterUs = readBackAfter(table);
        if (table.has("back_max_size")) {
            table.pair("back_max_size", fault.comesBack.maxWidth, fault.comesBack.maxHeight,
                       UINT32_MAX);
            checkSize(table, fault.comesBack, camera.format7);
        }
    }
    table.finish();
    return fault;
}

Fault readCallFault(TableReader& table, const CameraDescription& camera)
{
    Fault fault;
    fault.serial = camera.serial;
    table.require("operation");
    table.text("operation", fault.operation);
    table.text("arguments", fault.detail);
    table.integer("skip", fault.skip, 0, UINT32_MAX);
    table.integer("count", fault.count, 0, UINT32_MAX);
    table.text("text", fault.description);
    table.text("throws", fault.throws);
    table.flag("detach", fault.detach);
    if (fault.detach) {
        fault.backAfterUs = readBackAfter(table);
    }
    table.finish();
    return fault;
}

} // namespace

void readFaults(TableReader& table, CameraDescription& camera)
{
    for (TableReader& found : table.tables("fault")) {
        camera.faults.push_back(readFault(found, camera));
    }
    for (TableReader& found : table.tables("call_fault")) {
        camera.callFaults.push_back(readCallFault(found, camera));
    }
}

} // namespace fcsim
