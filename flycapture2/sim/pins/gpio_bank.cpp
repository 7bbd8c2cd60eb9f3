// The GPIO pins of one camera: their control registers, their lines, and the boxes on them.
#include "pins/gpio_bank.h"

#include "camera/register_file.h"

#include <utility>

namespace fcsim {

namespace {

constexpr std::uint32_t kLevelBit = 1;
constexpr unsigned kModeShift = 16;
constexpr std::uint32_t kModeBits = 0xFU << kModeShift;
constexpr std::uint32_t kRegisterDistance = 16;

std::uint32_t modeBits(PinMode mode)
{
    return static_cast<std::uint32_t>(mode) << kModeShift;
}

} // namespace

GpioBank::GpioBank(unsigned pins, const std::vector<IoBoxDescription>& boxes) : pins_(pins)
{
    for (Pin& pin : pins_) {
        pin.value = kPresenceBit;
    }
    for (const IoBoxDescription& box : boxes) {
        boxes_.push_back(std::make_unique<IoBox>(box));
    }
}

void GpioBank::powerDown(std::uint64_t nowUs)
{
    for (unsigned pin = 0; pin < pins_.size(); ++pin) {
        pins_[pin].value = kPresenceBit;
        pins_[pin].pull = false;
        driveLine(pin, {nowUs, false});
    }
}

std::optional<unsigned> GpioBank::pinAt(std::uint32_t address) const
{
    for (unsigned pin = 0; pin < pins_.size(); ++pin) {
        if (address == registers::kGpioControl + kRegisterDistance * pin) {
            return pin;
        }
    }
    return std::nullopt;
}

void GpioBank::preset(unsigned pin, std::uint32_t value)
{
    pins_[pin].value = value;
    pins_[pin].pull = (value & kLevelBit) != 0;
}

bool GpioBank::inMode(unsigned pin, PinMode mode) const
{
    return (pins_[pin].value & kModeBits) == modeBits(mode);
}

void GpioBank::useForStrobe(unsigned pin)
{
    pins_[pin].value = (pins_[pin].value & ~kModeBits) | modeBits(PinMode::strobe);
}

std::uint32_t GpioBank::read(unsigned pin, std::uint64_t nowUs)
{
    const std::uint32_t value = pins_[pin].value;
    if (!inMode(pin, PinMode::input)) {
        return value;
    }
    return (value & ~kLevelBit) | (lineLevel(pin, nowUs) ? kLevelBit : 0);
}

bool GpioBank::lineLevel(unsigned pin, std::uint64_t nowUs)
{
    catchUp(nowUs);
    bool level = pins_[pin].pull;
    for (const auto& box : boxes_) {
        if (box->answersOn(pin)) {
            level = box->level(nowUs);
        }
    }
    return levelAt(pins_[pin].plan, nowUs, level);
}

void GpioBank::write(unsigned pin, std::uint32_t value, std::uint64_t nowUs)
{
    Pin& target = pins_[pin];
    target.value = (target.value & kPresenceBit) | (value & ~kPresenceBit);
    if ((target.value & kPresenceBit) != 0 && inMode(pin, PinMode::output)) {
        driveLine(pin, {nowUs, (value & kLevelBit) != 0});
    }
}

void GpioBank::driveLine(unsigned pin, const LineTransition& transition)
{
    if (pins_[pin].driven == transition.level) {
        return;
    }
    pins_[pin].driven = transition.level;
    pins_[pin].transitions.add(transition);
    for (const auto& box : boxes_) {
        if (box->listensOn() == pin) {
            box->change(transition);
        }
    }
}

void GpioBank::catchUp(std::uint64_t nowUs)
{
    for (const auto& box : boxes_) {
        box->catchUp(nowUs);
    }
}

void GpioBank::drive(unsigned pin, std::vector<LineTransition> plan)
{
    if (pin < pins_.size()) {
        pins_[pin].plan = std::move(plan);
    }
}

std::vector<LineTransition> GpioBank::takeTransitions(unsigned pin)
{
    return pin < pins_.size() ? pins_[pin].transitions.take() : std::vector<LineTransition>();
}

std::vector<IoBoxEntry> GpioBank::takeBoxLog(unsigned box, std::uint64_t nowUs)
{
    catchUp(nowUs);
    return box < boxes_.size() ? boxes_[box]->takeLog() : std::vector<IoBoxEntry>();
}

} // namespace fcsim
