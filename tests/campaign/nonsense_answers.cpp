// Answers that make no sense, for each service of the host.
#include "nonsense_answers.h"

#include "host_overrides.h"
#include "recording_host.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <utility>

#include <sys/time.h>

using kxtest::host;

namespace kxcampaign {

namespace {

/// What kind of thing a service answers.
enum class Kind { nothing, text, word, byte, real, table, flag, special };

const std::map<std::string, Kind>& kinds()
{
    static const std::map<std::string, Kind> all = {
        {"KxGiMainCtx__GetModelStr", Kind::text},
        {"KxGiMainCtx__GetIdStr", Kind::text},
        {"KxGiMainCtx__GetActiveCamMask", Kind::word},
        {"KxGiMainCtx__GetDatachunk", Kind::word},
        {"KxGiMainCtx__GetBnum", Kind::special},
        {"KxGiMainCtx__GetFnum", Kind::special},
        {"KxGiMainCtx__GetWidth", Kind::word},
        {"KxGiMainCtx__GetHeight", Kind::word},
        {"KxGiMainCtx__GetOffsetX", Kind::word},
        {"KxGiMainCtx__GetOffsetY", Kind::word},
        {"KxGiMainCtx__GetFormat", Kind::special},
        {"KxGiMainCtx__SetFormat", Kind::nothing},
        {"KxGiMainCtx__GetCformat", Kind::byte},
        {"KxGiMainCtx__GetFps", Kind::real},
        {"KxGiMainCtx__GetGainMan", Kind::real},
        {"KxGiMainCtx__GetExptMan", Kind::real},
        {"KxGiMainCtx__GetGamma", Kind::real},
        {"KxGiMainCtx__GetSatur", Kind::word},
        {"KxGiMainCtx__GetWbred", Kind::word},
        {"KxGiMainCtx__GetWbblu", Kind::word},
        {"KxGiMainCtx__GetRotate", Kind::word},
        {"KxGiMainCtx__GetAtbright", Kind::real},
        {"KxGiMainCtx__GetGainlimsLow", Kind::real},
        {"KxGiMainCtx__GetGainlimsHigh", Kind::real},
        {"KxGiMainCtx__GetEtlimsLow", Kind::real},
        {"KxGiMainCtx__GetEtlimsHigh", Kind::real},
        {"KxGiMainCtx__GetSweepProf", Kind::word},
        {"KxGiMainCtx__GetSweepGainMod", Kind::word},
        {"KxGiMainCtx__GetSweepEtimeMod", Kind::word},
        {"KxGiMainCtx__GetSweepLutMod", Kind::word},
        {"KxGiMainCtx__GetTsadjns", Kind::word},
        {"KxGiMainCtx__GetLutBitSize", Kind::word},
        {"KxGiMainCtx__GetLutDataU16", Kind::table},
        {"KxGiMainCtx__GetIoboxNum", Kind::special},
        {"KxGiMainCtx__GetIoboxPin", Kind::word},
        {"KxGiMainCtx__GetIoboxMod", Kind::word},
        {"KxGiMainCtx__GetIoboxInv", Kind::word},
        {"KxGiMainCtx__GetIoboxSrc", Kind::word},
        {"KxGiMainCtx__GetIoboxPar", Kind::word},
        {"KxGi__DoReconfig", Kind::special},
        {"KxGi__CheckDynConfig", Kind::special},
        {"KxGi__SetNewCfgVendor", Kind::nothing},
        {"KxGi__SetNewCfgPlugin", Kind::nothing},
        {"KxGi__SetSignalAction", Kind::nothing},
        {"KxGi__ResetTermSigProc", Kind::nothing},
        {"KxGi__SetTermSigProc", Kind::nothing},
        {"KxGi__SetCurrFpsUs", Kind::nothing},
        {"KxGi__HaltStop", Kind::nothing},
        {"KxGi__HaltUpdate", Kind::nothing},
        {"KxGi__CommTriggerAll", Kind::nothing},
        {"KxGi__CalcLutDynam", Kind::special},
        {"KxGi__GetLutDynam", Kind::special},
        {"KxGiMem__Init", Kind::nothing},
        {"KxGiMem__SetActFsize", Kind::nothing},
        {"KxGiMem__GetBufPtr", Kind::special},
        {"KxGiMem__IsFactoryUsed", Kind::flag},
        {"KxGiMemInst__Init", Kind::nothing},
        {"KxGiMemInst__SetActFsize", Kind::nothing},
        {"KxGiMemInst__Trigger", Kind::special},
        {"KxSc__SetParamVal", Kind::nothing},
        {"KxSc__InstSetParamVal", Kind::nothing},
        {"KxSc__ProcExport", Kind::nothing},
        {"KxUtl__CheckSignal", Kind::special},
        {"KxUtl__TimeValDiff", Kind::special},
        {"KxUtl__UpdateGrabState", Kind::nothing},
    };
    return all;
}

Nonsense overriding(const std::string& service, std::string label, std::uint64_t bits)
{
    return {std::move(label), [service, bits] { kxtest::hostOverrides()[service] = bits; }};
}

constexpr std::uint32_t kWords[] = {0,          1,          2,          3,          7,
                                    9,          12,         13,         255,        256,
                                    65'535,     65'536,     1'000'003,  0x7FFFFFFE, 0x7FFFFFFF,
                                    0x80000000, 0x80000001, 0xFFFFFF00, 0xFFFFFFFE, 0xFFFFFFFF};

std::vector<Nonsense> words(const std::string& service)
{
    std::vector<Nonsense> all;
    for (const std::uint32_t word : kWords) {
        all.push_back(overriding(service, std::to_string(word), word));
    }
    return all;
}

std::vector<Nonsense> reals(const std::string& service)
{
    using Limits = std::numeric_limits<float>;
    std::vector<Nonsense> all;
    for (const float real :
         {0.0F, -0.0F, Limits::denorm_min(), 1e-6F, -2.0F, -1e30F, 1e30F, Limits::max(),
          Limits::lowest(), Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()}) {
        all.push_back(
            overriding(service, std::to_string(real), std::bit_cast<std::uint32_t>(real)));
    }
    return all;
}

/// Without a model there is no camera, and an ID that is none fits none.
std::vector<Nonsense> texts(const std::string& service)
{
    static const std::string huge(5000, 'x');
    const auto bitsOf = [](const char* text) { return std::bit_cast<std::uintptr_t>(text); };
    constexpr int kNotOurs = 3;
    const bool model = service == "KxGiMainCtx__GetModelStr";
    std::vector<Nonsense> all = {overriding(service, "null", 0),
                                 overriding(service, "empty", bitsOf("")),
                                 overriding(service, "format", bitsOf("%s%n%s")),
                                 overriding(service, "number", bitsOf("99999999999999999999999")),
                                 overriding(service, "huge", bitsOf(huge.c_str()))};
    all[0].code = model ? kNotOurs : 0;
    for (std::size_t index = 2; index < all.size(); ++index) {
        all[index].code = kNotOurs;
        all[index].message = model ? "iCheck configured Model" : "wpIdStr conversion error";
    }
    return all;
}

std::vector<Nonsense> bytes(const std::string& service)
{
    std::vector<Nonsense> all;
    for (const unsigned byte : {0U, 6U, 7U, 8U, 10U, 127U, 128U, 255U}) {
        all.push_back(overriding(service, std::to_string(byte), byte));
    }
    return all;
}

// ---- Services that need more than a value.

std::vector<Nonsense> bufferCounts(const std::string& service)
{
    constexpr int kNoBuffers = -1;
    constexpr int kNotConfigured = -2;
    std::vector<Nonsense> all = {
        overriding(service, "0", 0), overriding(service, "too many", 10'000),
        overriding(service, "largest int", 0x7FFFFFFF), overriding(service, "negative", 0x80000000),
        overriding(service, "all ones", 0xFFFFFFFF)};
    for (Nonsense& one : all) {
        // More than the library takes.
        one.code = kNotConfigured;
        one.message = "wError during SetConfiguration";
        // Such a host has a few slots all the same.
        one.apply = [inner = std::move(one.apply)] {
            inner();
            static std::byte slots[4 * 65'536];
            host().bufPtr = [](std::uint32_t index) {
                return index < 4 ? &slots[std::size_t{index} * 65'536] : nullptr;
            };
        };
    }
    all[0].code = all[1].code = kNoBuffers;
    all[0].message = "wIncorrect input params detected";
    all[1].message = "eAllocated buffer flat is incorrect !";
    return all;
}

std::vector<Nonsense> formats(const std::string& service)
{
    constexpr int kNotConfigured = -2;
    std::vector<Nonsense> all = bytes(service);
    for (Nonsense& one : all) {
        one.code = kNotConfigured;
        one.message = "eThe asked pixel format is not supported by device!";
    }
    return all;
}

/// Memory that is no flat block of slots.
Nonsense slotsAt(std::string label, std::vector<std::ptrdiff_t> places, std::string message)
{
    constexpr int kRefused = -1;
    const auto answer = [places = std::move(places)](std::uint32_t index) -> void* {
        static std::byte memory[1 << 20];
        const std::ptrdiff_t place = places[index % places.size()];
        return place < 0 ? nullptr : memory + place;
    };
    return {std::move(label), [answer] { host().bufPtr = answer; }, kRefused, std::move(message)};
}

std::vector<Nonsense> slots()
{
    const std::string notFlat = "eAllocated buffer flat is incorrect !";
    return {slotsAt("null", {-1}, "wThe buffer flat zero head found"),
            slotsAt("null later", {0, 65'536, -1}, notFlat),
            slotsAt("all the same", {0}, notFlat),
            slotsAt("descending", {300'000, 200'000, 100'000, 0}, notFlat),
            slotsAt("overlapping", {0, 16, 32, 48}, notFlat),
            slotsAt("uneven", {0, 65'536, 131'072, 200'000}, notFlat)};
}

/// Such a host has entries without a pin.
std::vector<Nonsense> entryCounts()
{
    std::vector<Nonsense> all = words("KxGiMainCtx__GetIoboxNum");
    for (Nonsense& one : all) {
        one.apply = [inner = std::move(one.apply)] {
            inner();
            for (const char* const field : {"Pin", "Mod", "Inv", "Src", "Par"}) {
                kxtest::hostOverrides()[std::string("KxGiMainCtx__GetIobox") + field] = 0;
            }
        };
    }
    return all;
}

std::vector<Nonsense> signals()
{
    std::vector<Nonsense> all;
    for (const int code : {1, 2, 3, 4, 5, 6, 255, -1, std::numeric_limits<int>::max(),
                           std::numeric_limits<int>::min()}) {
        all.push_back({std::to_string(code), [code] {
                           // The end of the run stays its own.
                           host().checkSignal = [own = host().checkSignal, code] {
                               return own() == 1 ? 1 : code;
                           };
                       }});
    }
    return all;
}

std::vector<Nonsense> reconfigurations()
{
    constexpr int kLow = std::numeric_limits<int>::min();
    constexpr int kHigh = std::numeric_limits<int>::max();
    std::vector<Nonsense> all;
    for (const int result : {0, 1, -1, kLow, kHigh}) {
        for (const int restart : {0, 1, -1, kLow, kHigh}) {
            const auto answer = [result, restart](int* wanted) {
                *wanted = restart;
                return result;
            };
            // Only a refusal by a negative result that wants a new start ends the run so.
            all.push_back({std::to_string(result) + ", " + std::to_string(restart),
                           [answer] { host().doReconfig = answer; },
                           result < 0 && restart != 0 ? 1 : 0});
        }
    }
    return all;
}

std::vector<Nonsense> liveChanges()
{
    std::vector<Nonsense> all;
    for (const int answer : {1, -1, std::numeric_limits<int>::min()}) {
        all.push_back({std::to_string(answer),
                       [answer] { host().checkDynConfig = [answer] { return answer; }; }});
    }
    return all;
}

std::vector<Nonsense> refusals()
{
    std::vector<Nonsense> all;
    for (const int answer : {1, -1, std::numeric_limits<int>::min()}) {
        all.push_back({std::to_string(answer),
                       [answer] { host().trigger = [answer](int) { return answer; }; }});
    }
    return all;
}

std::vector<Nonsense> tables()
{
    static std::vector<std::uint16_t> largest(512, 0xFFFF);
    return {overriding("KxGiMainCtx__GetLutDataU16", "null", 0),
            overriding("KxGiMainCtx__GetLutDataU16", "largest values",
                       std::bit_cast<std::uintptr_t>(largest.data()))};
}

std::vector<Nonsense> distributions()
{
    return {{"nothing", [] { host().calcLut = nullptr; }},
            {"largest", [] {
                 host().calcLut = [](const void*, std::uint32_t bits, std::uint32_t* cdf) {
                     std::fill_n(cdf, std::size_t{1} << bits, 0xFFFFFFFFU);
                 };
             }}};
}

std::vector<Nonsense> calculatedTables()
{
    return {{"nothing", [] { host().getLut = nullptr; }},
            {"largest", [] {
                 host().getLut = [](std::uint32_t bits, const std::uint32_t*, std::uint16_t* lut) {
                     std::fill_n(lut, std::size_t{1} << bits, std::uint16_t{0xFFFF});
                 };
             }}};
}

std::vector<Nonsense> differences()
{
    constexpr auto kLow = std::numeric_limits<long>::min();
    constexpr auto kHigh = std::numeric_limits<long>::max();
    static timeval all[] = {{0, 0}, {-1, -1}, {kHigh, kHigh}, {kLow, kLow}, {0, 0x7FFFFFFFFF}};
    std::vector<Nonsense> answers = {overriding("KxUtl__TimeValDiff", "null", 0)};
    for (timeval& one : all) {
        answers.push_back(overriding("KxUtl__TimeValDiff", std::to_string(one.tv_usec),
                                     std::bit_cast<std::uintptr_t>(&one)));
    }
    return answers;
}

std::vector<Nonsense> specials(const std::string& service)
{
    if (service == "KxGiMainCtx__GetBnum") {
        return bufferCounts(service);
    }
    if (service == "KxGiMainCtx__GetFormat") {
        return formats(service);
    }
    if (service == "KxGiMem__GetBufPtr") {
        return slots();
    }
    static const std::map<std::string, std::function<std::vector<Nonsense>()>> others = {
        {"KxGiMainCtx__GetFnum", [] { return words("KxGiMainCtx__GetFnum"); }},
        {"KxGiMainCtx__GetIoboxNum", entryCounts},
        {"KxGi__DoReconfig", reconfigurations},
        {"KxGi__CheckDynConfig", liveChanges},
        {"KxGi__CalcLutDynam", distributions},
        {"KxGi__GetLutDynam", calculatedTables},
        {"KxGiMemInst__Trigger", refusals},
        {"KxUtl__CheckSignal", signals},
        {"KxUtl__TimeValDiff", differences},
    };
    return others.at(service)();
}

} // namespace

std::optional<std::vector<Nonsense>> nonsenseOf(const std::string& service)
{
    const auto found = kinds().find(service);
    if (found == kinds().end()) {
        return std::nullopt;
    }
    switch (found->second) {
    case Kind::nothing:
        return std::vector<Nonsense>{};
    case Kind::text:
        return texts(service);
    case Kind::byte:
        return bytes(service);
    case Kind::real:
        return reals(service);
    case Kind::table:
        return tables();
    case Kind::word:
    case Kind::flag:
        return words(service);
    case Kind::special:
        break;
    }
    return specials(service);
}

void clearNonsense()
{
    kxtest::hostOverrides().clear();
}

} // namespace kxcampaign
