// Range checks of the appliers for any range and any value, against a plain account of what is due.
#include "appliers_fixture.h"

#include <algorithm>
#include <cmath>

#include <rapidcheck/gtest.h>

using FlyCapture2::PropertyType;
using kxtest::host;
using kxtest::journal;

namespace {

/// What becomes of an asked value.
enum class Due { kept, notAllowed, switchedOff, tooLow, tooHigh, written };

/// In whole parts of a configured unit, so that the account needs no floating point.
struct Asked {
    int value;
    int min;
    int max;
};

/// Ranges and values that often meet, and often the special values as well.
Asked anyAsked(int special)
{
    const auto number =
        rc::gen::oneOf(rc::gen::inRange(-3'000, 6'000), rc::gen::inRange(special - 3, special + 4),
                       rc::gen::inRange(996, 1'005), rc::gen::inRange(197, 204));
    const int one = *number;
    const int other = *number;
    const int value = *rc::gen::oneOf(number, rc::gen::element(one, other, one - 1, other + 1));
    return {value, std::min(one, other), std::max(one, other)};
}

Due within(const Asked& asked)
{
    if (asked.value < asked.min) {
        return Due::tooLow;
    }
    return asked.value > asked.max ? Due::tooHigh : Due::written;
}

class AppliersRangeTest : public kxtest::AppliersTest {
protected:
    /// Gives the camera a range, of which `parts` make one of its units; forgets the one it told
    /// before.
    void setRange(PropertyType type, const Asked& asked, float parts)
    {
        absRanges[type] = {static_cast<float>(asked.min) / parts,
                           static_cast<float>(asked.max) / parts};
        cam_->propNames[type].absRangeValid = false;
        cam_->written.clear();
        journal().clear();
    }
    /// What has become of the value, as seen from outside.
    Due seen() const
    {
        const auto said = [](const char* text) { return !journal().logsWith(text).empty(); };
        if (said("config is skipped")) {
            return Due::kept;
        }
        if (said("is not allowed")) {
            return Due::notAllowed;
        }
        if (said("control is turned off")) {
            return Due::switchedOff;
        }
        if (said("is lower than min")) {
            return Due::tooLow;
        }
        return said("exceeds max") ? Due::tooHigh : Due::written;
    }
    /// Whether this is the value of the one write to the camera; switching off is another one.
    bool wrote(float value) const
    {
        return cam_->written.size() == 1 && cam_->written[0].onOff &&
               cam_->written[0].absValue == value;
    }
};

RC_GTEST_FIXTURE_PROP(AppliersRangeTest, Gain, ())
{
    const Asked asked = anyAsked(-100'000);
    setRange(FlyCapture2::GAIN, asked, 1'000.0F);
    host().config.gainMan = static_cast<float>(asked.value) / 1'000.0F;
    proc_->ProcParametrizeCamManGain(cam_.get());
    const Due due = asked.value == -100'000 ? Due::kept : within(asked);
    RC_ASSERT(seen() == due);
    RC_ASSERT(wrote(host().config.gainMan) == (due == Due::written));
}

RC_GTEST_FIXTURE_PROP(AppliersRangeTest, FrameRate, ())
{
    const Asked asked = anyAsked(-1'000);
    // Single precision puts these just outside and just inside; the exact test has them.
    RC_PRE(asked.value != -1'001 && asked.value != -999);
    setRange(FlyCapture2::FRAME_RATE, asked, 1'000.0F);
    host().config.fps = static_cast<float>(asked.value) / 1'000.0F;
    proc_->ProcParametrizeCamFps(cam_.get());
    const Due due = std::abs(asked.value + 1'000) <= 1 ? Due::kept : within(asked);
    RC_ASSERT(seen() == due);
    RC_ASSERT(wrote(host().config.fps) == (due == Due::written));
}

RC_GTEST_FIXTURE_PROP(AppliersRangeTest, Gamma, ())
{
    const Asked asked = anyAsked(-1'000);
    RC_PRE(asked.value != -1'001 && asked.value != -999 && asked.value != 1'001 &&
           asked.value != 999);
    setRange(FlyCapture2::GAMMA, asked, 1'000.0F);
    host().config.gamma = static_cast<float>(asked.value) / 1'000.0F;
    proc_->ProcParametrizeCamGamma(cam_.get());
    Due due = within(asked);
    if (std::abs(asked.value + 1'000) <= 1) {
        due = Due::kept;
    } else if (asked.value < 200) {
        due = Due::notAllowed;
    } else if (asked.value == 1'000) {
        due = Due::switchedOff;
    }
    RC_ASSERT(seen() == due);
    RC_ASSERT(wrote(host().config.gamma) == (due == Due::written));
}

/// Whole microseconds against a range in eighths of a millisecond, which floating point holds
/// exactly in both units.
RC_GTEST_FIXTURE_PROP(AppliersRangeTest, Exposure, ())
{
    Asked asked = anyAsked(0);
    setRange(FlyCapture2::SHUTTER, asked, 8.0F);
    asked = {asked.value * 125 + *rc::gen::inRange(-1, 2), asked.min * 125, asked.max * 125};
    host().config.exptMan = static_cast<float>(asked.value);
    proc_->ProcParametrizeCamManExpo(cam_.get());
    const Due due = asked.value == -1 ? Due::kept : within(asked);
    RC_ASSERT(seen() == due);
    RC_ASSERT(wrote(static_cast<float>(asked.value) / 1'000.0F) == (due == Due::written));
}

RC_GTEST_FIXTURE_PROP(AppliersRangeTest, Saturation, ())
{
    const Asked asked = anyAsked(-1);
    setRange(FlyCapture2::SATURATION, asked, 1.0F);
    host().config.satur = asked.value;
    proc_->ProcParametrizeCamSatur(cam_.get());
    const Due due = asked.value == -1 ? Due::kept : within(asked);
    RC_ASSERT(seen() == due);
    RC_ASSERT(wrote(static_cast<float>(asked.value)) == (due == Due::written));
}

RC_GTEST_FIXTURE_PROP(AppliersRangeTest, WhiteBalance, ())
{
    const auto number = rc::gen::inRange(0, 1'024);
    const int one = *number;
    const int other = *number;
    const auto asked =
        rc::gen::oneOf(number, rc::gen::element(-1, -2, one, other), rc::gen::arbitrary<int>());
    const int red = *asked;
    const int blue = *asked;
    RC_PRE(red != -1 || blue != -1);
    const int min = std::min(one, other);
    const int max = std::max(one, other);
    relRange = {static_cast<unsigned>(min), static_cast<unsigned>(max)};
    cam_->propNames[FlyCapture2::WHITE_BALANCE].relRangeValid = false;
    cam_->written.clear();
    unsigned had[2] = {};
    RC_ASSERT(cam_->ExPropertyGetRel(FlyCapture2::WHITE_BALANCE, &had[0], &had[1]) == 0);
    journal().clear();
    host().config.wbred = red;
    host().config.wbblu = blue;
    proc_->ProcParametrizeCamWB(cam_.get());
    const auto warnings = [](const char* text) { return journal().logsWith(text).size(); };
    const auto due = [min, max](int value, bool low) {
        return static_cast<std::size_t>(value != -1 && (low ? value < min : value > max));
    };
    RC_ASSERT(warnings("Red val") == due(red, true) + due(red, false));
    RC_ASSERT(warnings("Blue val") == due(blue, true) + due(blue, false));
    RC_ASSERT(warnings("is lower than min") == due(red, true) + due(blue, true));
    // Each value counts by itself, whatever was said of the other.
    RC_ASSERT(cam_->written.size() == 1U);
    const auto taken = [min, max](int value, unsigned before) {
        return min <= value && value <= max ? static_cast<unsigned>(value) : before;
    };
    RC_ASSERT(cam_->written[0].valueA == taken(red, had[0]));
    RC_ASSERT(cam_->written[0].valueB == taken(blue, had[1]));
}

} // namespace
