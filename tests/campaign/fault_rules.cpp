// What the plug-in answers when a call of the SDK fails: the table that the campaign checks.
#include "fault_rules.h"

#include <algorithm>
#include <array>

namespace kxcampaign {

namespace {

constexpr std::array<const char*, kFailures> kFailureNames = {
    "error", "timeout", "exception", "foreign exception", "unplug", "unplug with exception"};

/// Result of a call that need not end the run.
constexpr int kGoesOn = 1'000'000;

/// When a rule holds.
enum When { each, once, always };

/// One row. An absent phase or an empty text stands for all of them. The first row that fits
/// counts.
struct Rule {
    std::optional<Phase> phase;
    const char* object;
    const char* operation;
    const char* detail; ///< its begin
    const char* message;
    int code = kGoesOn;
    When when = each;
    unsigned occurrence = 0; ///< of the call in its phase, counted from 1; 0 = each
    std::optional<Failure> failure = std::nullopt;
    bool sameFrames = true;
    bool oncePerProcess = false;
};

using P = Phase;

const std::vector<Rule>& rules()
{
    constexpr auto any = std::nullopt;
    constexpr int kNoCamera = 2;
    constexpr int kNotOurs = 3;
    constexpr int kNoConnection = -1;
    constexpr int kNoBuffers = -1;
    constexpr int kNotConfigured = -2;
    constexpr int kNoPower = -5;
    constexpr int kNoFrames = -10;
    // clang-format off
    static const std::vector<Rule> table = {
        // ---- Looking for the camera.
        {P::inventory, "", "GetNumOfCameras", "", "ino any devices found, waiting for dev", kNoCamera},
        {P::inventory, "", "GetCameraFromIndex", "", "dcan't do GetCameraFromIndex for device %d"},
        {P::inventory, "", "GetCameraSerialNumberFromIndex", "", "dcan't do GetCameraSerialNumberFromIndex %d"},
        {P::inventory, "", "GetInterfaceTypeFromGuid", "", "dcan't do GetInterfaceTypeFromGuid"},
        {P::rejection, "", "GetCameraFromIndex", "", "ican't do GetCameraFromIndex for device %d"},
        {P::rejection, "", "Connect", "", "ican't connect to Camera for device"},
        {P::rejection, "", "GetCameraInfo", "", "ican't do GetCameraInfo for connected device"},
        {P::rejection, "", "Disconnect", "", ""},
        {P::selection, "", "GetCameraFromIndex", "", "ican't do GetCameraFromIndex for device %d", kNotOurs},
        {P::selection, "", "Connect", "", "ican't connect to Camera for device", kNotOurs},
        {P::selection, "", "GetCameraInfo", "", "ican't do GetCameraInfo for connected device", kNotOurs},

        // ---- Power. Time-outs are waited for, as long as one of ten reads succeeds.
        {P::powerUp, "", "WriteRegister", "0x610", "wError during WriteRegister: %t", kNoPower},
        {P::powerUp, "", "ReadRegister", "0x610", "wTimeout during powering up: %t", kNoPower, always, 0, Failure::timeout},
        {P::powerUp, "", "ReadRegister", "0x610", "", kGoesOn, once, 0, Failure::timeout},
        {P::powerUp, "", "ReadRegister", "0x610", "wError during ReadRegister: %t", kNoPower},

        // ---- Stream channel: silent, but the camera must be connected again.
        {P::streamChannel, "Camera", "", "", "eCan't connect to camera", kNoConnection},
        {P::streamChannel, "GigECamera", "Disconnect", "", "eCan't connect to camera", kNoConnection},
        {P::streamChannel, "GigECamera", "Connect", "", ""},
        {P::streamChannel, "GigECamera", "GetNumStreamChannels", "", ""},
        {P::streamChannel, "GigECamera", "GetGigEStreamChannelInfo", "", ""},
        {P::streamChannel, "GigECamera", "SetGigEStreamChannelInfo", "", ""},

        // ---- Configuration.
        {P::configuration, "", "GetFormat7Info", "", "wError during GetFormat7Info: %t", kNotConfigured},
        {P::configuration, "", "ValidateFormat7Settings", "", "wError during ValidateFormat7Settings: %t", kNotConfigured},
        {P::configuration, "", "SetFormat7Configuration", "", "wError during SetFormat7Configuration: %t", kNotConfigured},
        {P::configuration, "", "SetConfiguration", "", "wError during SetConfiguration: %t", kNotConfigured},
        {P::configuration, "", "ReadRegister", "0x1040", "wCan't obtain Bayer format from 0x00000000"},
        {any, "", "GetFormat7Info", "", ""},
        // A region that cannot be read is not the configured one: a full reconfiguration ends the grab.
        {P::reconfiguration, "", "GetFormat7Configuration", "", "ican't continue grabbing with new configuration", 0, each, 1, any, false},
        {any, "", "GetFormat7Configuration", "", ""},
        {any, "", "GetEmbeddedImageInfo", "", "wError during GetEmbeddedImageInfo: %t"},
        {any, "", "SetEmbeddedImageInfo", "", "wError during SetEmbeddedImageInfo: %t"},
        {any, "", "GetStats", "", ""},

        // ---- Parameters.
        {any, "", "GetPropertyInfo", "", "wcan't get property info"},
        {any, "", "GetProperty", "", "wcan't get property"},
        {any, "", "SetProperty", "", "wcan't set property"},
        {any, "", "ReadRegister", "0x10A0", ""},
        {any, "", "WriteRegister", "0x10A0", ""},
        {any, "", "ReadRegister", "0x1098", ""},
        {any, "", "WriteRegister", "0x1098", ""},

        // ---- Look-up table. A 12-bit pass that is never told about the camera's goes on until a signal.
        // Asked in vain on the first 12-bit frame, of a camera that is gone, the pass does not go on.
        {P::dynamicLut, "", "GetLUTInfo", "", "", kNoFrames, each, 6, Failure::unplug},
        {P::dynamicLut, "", "GetLUTInfo", "", "wcan't do GetLUTInfo: error - %t", kGoesOn, each, 0, any, false},
        {any, "", "GetLUTInfo", "", "wcan't do GetLUTInfo: error - %t"},
        {any, "", "EnableLUT", "on", "wcan't enable LUT: error - %t"},
        {P::liveChange, "", "EnableLUT", "off", "wcan't disable LUT follow configuration: error - %t"},
        {P::dynamicLut, "", "EnableLUT", "off", "", kGoesOn, each, 0, any, false},
        {any, "", "GetActiveLUTBank", "", ""},
        {any, "", "SetLUTChannel", "", "wcan't do SetLUTChannel: error - %t"},
        {any, "", "SetActiveLUTBank", "", "wcan't do SetActiveLUTBank(0): error - %t"},

        // ---- Capture. A start that fails shows as frames that do not come.
        {any, "", "SetUserBuffers", "", "wSetUserBuffers error: %t", kNoBuffers},
        {any, "", "StartCapture", "", "wFrames Drop trigger", kNoFrames},
        {any, "", "RetrieveBuffer", "", "werror description: %t", kNoFrames, always},
        // A signal that counts polls then comes a frame earlier.
        {P::dynamicLut, "", "RetrieveBuffer", "", "", kGoesOn, each, 0, any, false},
        {any, "", "RetrieveBuffer", "", ""},
        {any, "", "ReadRegister", "0x1EA8", ""},
        {any, "Image", "Convert", "", "wgot pixel Conversion error (", kGoesOn, each, 0, any, true, true},
        {any, "Image", "GetData", "", ""},
        {any, "Image", "GetDataSize", "", ""},
        {any, "Image", "GetMetadata", "", ""},
        {any, "Image", "GetTimeStamp", "", ""},
        // A capture that runs on cannot be configured for 12 bits.
        {P::dynamicLut, "", "StopCapture", "", "wError during SetFormat7Configuration: ", kNotConfigured, each, 1},
        {P::dynamicLut, "", "StopCapture", "", ""},
        {P::teardown, "", "StopCapture", "", ""},
        {P::teardown, "Camera", "Disconnect", "", "wcan't do Disconnect: error - %t"},

        // ---- The control thread. A pin whose register cannot be read is not there.
        {P::ioBox, "", "IsConnected", "", "idevice detach is detected by ctrl thread..."},
        {P::ioBox, "", "ReadRegister", "0x11", "eThe feature is not available", kGoesOn, each, 1},
        {P::ioBox, "", "ReadRegister", "0x11", ""},
        {P::ioBox, "", "WriteRegister", "0x11", ""},
        {P::ioBox, "", "GetStrobeInfo", "", "wcan't do GetStrobeInfo: error %t"},
        {P::ioBox, "", "GetStrobe", "", "wcan't do GetStrobe: error %t"},
        {P::ioBox, "", "SetStrobe", "", "wcan't do SetStrobe: error %t"},

        // A camera that seems not to be connected is connected anew.
        {any, "", "IsConnected", "", "iCamera is connected"},
    };
    // clang-format on
    return table;
}

bool fits(const Rule& rule, const TracedCall& call, unsigned occurrence, Failure failure,
          bool toTheEnd)
{
    const auto is = [](const char* wanted, const std::string& found) {
        return *wanted == '\0' || found == wanted;
    };
    return (!rule.phase || *rule.phase == call.phase) && is(rule.object, call.object) &&
           is(rule.operation, call.operation) && call.detail.starts_with(rule.detail) &&
           (rule.when == each || (rule.when == always) == toTheEnd) &&
           (rule.occurrence == 0 || rule.occurrence == occurrence) &&
           (!rule.failure || *rule.failure == failure);
}

/// The message with its place holders filled in.
std::string filledIn(std::string message, const TracedCall& call)
{
    for (const auto& [sign, text] :
         {std::pair{"%d", call.detail}, {"%t", "simulated: " + std::string(kFaultText)}}) {
        if (const std::size_t place = message.find(sign); place != std::string::npos) {
            message.replace(place, 2, text);
        }
    }
    return message;
}

} // namespace

const char* nameOf(Failure failure)
{
    return kFailureNames[static_cast<std::size_t>(failure)];
}

std::optional<Answer> answerTo(const TracedCall& call, unsigned occurrence, Failure failure,
                               bool toTheEnd)
{
    for (const Rule& rule : rules()) {
        if (fits(rule, call, occurrence, failure, toTheEnd)) {
            Answer answer;
            if (rule.code != kGoesOn) {
                answer.code = rule.code;
            }
            answer.message = filledIn(rule.message, call);
            answer.oncePerProcess = rule.oncePerProcess;
            answer.sameFrames = rule.sameFrames;
            return answer;
        }
    }
    return std::nullopt;
}

} // namespace kxcampaign
