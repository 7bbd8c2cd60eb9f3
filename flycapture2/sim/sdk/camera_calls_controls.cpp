// The calls of camera objects: properties, registers, strobes, look-up tables.
#include "sdk/call_text.h"
#include "sdk/camera_calls.h"

namespace fcsim {

using FlyCapture2::Error;

Error CameraCalls::getPropertyInfo(FlyCapture2::PropertyInfo* info)
{
    return settings(
        "GetPropertyInfo", info != nullptr, [&] { return propertyName(info->type); },
        [&](Device& device) { return device.properties().info(*info); });
}

Error CameraCalls::getProperty(FlyCapture2::Property* property)
{
    return settings(
        "GetProperty", property != nullptr, [&] { return propertyName(property->type); },
        [&](Device& device) { return device.properties().get(*property); });
}

Error CameraCalls::setProperty(const FlyCapture2::Property* property, bool broadcast)
{
    return settings(
        "SetProperty", property != nullptr,
        [&] { return propertyText(*property) + broadcastText(broadcast); },
        [&](Device& device) { return device.setProperty(*property); });
}

Error CameraCalls::getTriggerModeInfo(FlyCapture2::TriggerModeInfo* info)
{
    return camera("GetTriggerModeInfo", info != nullptr, noArguments, [&](Device&) {
        *info = FlyCapture2::TriggerModeInfo(); // free-running cameras only
        return success();
    });
}

Error CameraCalls::writeRegister(unsigned address, unsigned value, bool broadcast)
{
    const auto text = [&] {
        return hexText(address) + " " + hexText(value) + broadcastText(broadcast);
    };
    const auto write = [&](Device& device) { return device.writeRegister(address, value); };
    const bool limits =
        address == registers::kAutoShutterRange || address == registers::kAutoGainRange;
    return limits ? settings("WriteRegister", true, text, write)
                  : camera("WriteRegister", true, text, write);
}

Error CameraCalls::readRegister(unsigned address, unsigned* value)
{
    return camera(
        "ReadRegister", value != nullptr, [&] { return hexText(address); },
        [&](Device& device) { return device.readRegister(address, *value); });
}

Error CameraCalls::getCycleTime(FlyCapture2::TimeStamp* time)
{
    return camera("GetCycleTime", time != nullptr, noArguments, [&](Device& device) {
        *time = timeStampOf(device.cycleTime(Device::hostTime()));
        return success();
    });
}

Error CameraCalls::getStrobeInfo(FlyCapture2::StrobeInfo* info)
{
    const auto text = [&] { return std::to_string(info->source); };
    return camera("GetStrobeInfo", info != nullptr, text, [&](Device& device) {
        *info = device.strobes().info(info->source);
        return success();
    });
}

Error CameraCalls::getStrobe(FlyCapture2::StrobeControl* strobe)
{
    const auto text = [&] { return std::to_string(strobe->source); };
    return camera("GetStrobe", strobe != nullptr, text,
                  [&](Device& device) { return device.strobes().get(*strobe); });
}

Error CameraCalls::setStrobe(const FlyCapture2::StrobeControl* strobe)
{
    const auto text = [&] {
        return std::to_string(strobe->source) + (strobe->onOff ? " on" : " off");
    };
    return camera("SetStrobe", strobe != nullptr, text,
                  [&](Device& device) { return device.setStrobe(*strobe); });
}

Error CameraCalls::getLutInfo(FlyCapture2::LUTData* data)
{
    return camera("GetLUTInfo", data != nullptr, noArguments,
                  [&](Device& device) { return device.lut().info(*data); });
}

Error CameraCalls::getLutBankInfo(unsigned bank, bool* readable, bool* writable)
{
    return camera(
        "GetLUTBankInfo", readable != nullptr && writable != nullptr,
        [&] { return std::to_string(bank); },
        [&](Device& device) { return device.lut().bankInfo(bank, *readable, *writable); });
}

Error CameraCalls::getActiveLutBank(unsigned* bank)
{
    return camera("GetActiveLUTBank", bank != nullptr, noArguments,
                  [&](Device& device) { return device.lut().activeBank(*bank); });
}

Error CameraCalls::setActiveLutBank(unsigned bank)
{
    return settings(
        "SetActiveLUTBank", true, [&] { return std::to_string(bank); },
        [&](Device& device) { return device.lutChanged(device.lut().setActiveBank(bank)); });
}

Error CameraCalls::enableLut(bool on)
{
    return settings(
        "EnableLUT", true, [&] { return on ? "on" : "off"; },
        [&](Device& device) { return device.lutChanged(device.lut().enable(on)); });
}

namespace {

std::string channelText(unsigned bank, unsigned channel, unsigned count)
{
    return "bank=" + std::to_string(bank) + " channel=" + std::to_string(channel) +
           " entries=" + std::to_string(count);
}

} // namespace

Error CameraCalls::getLutChannel(unsigned bank, unsigned channel, unsigned count, unsigned* entries)
{
    return camera(
        "GetLUTChannel", entries != nullptr, [&] { return channelText(bank, channel, count); },
        [&](Device& device) { return device.lut().read(bank, channel, count, entries); });
}

Error CameraCalls::setLutChannel(unsigned bank, unsigned channel, unsigned count,
                                 const unsigned* entries)
{
    return settings(
        "SetLUTChannel", entries != nullptr, [&] { return channelText(bank, channel, count); },
        [&](Device& device) {
            return device.lutChanged(device.lut().write(bank, channel, count, entries));
        });
}

} // namespace fcsim
