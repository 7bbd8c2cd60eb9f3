// Reads the description of an I/O box.
#include "description/io_box_parser.h"

#include <initializer_list>
#include <utility>

namespace fcsim {

namespace {

constexpr std::uint64_t kMax32 = 0xFFFFFFFF;
constexpr std::uint64_t kSecondUs = 1'000'000;
constexpr std::uint64_t kMinuteUs = 60 * kSecondUs;
constexpr unsigned kWordBits = 32;

const std::initializer_list<std::pair<const char*, bool>> kLevels{{"low", false}, {"high", true}};
const std::initializer_list<std::pair<const char*, Misbehaviour>> kMisbehaviours{
    {"none", Misbehaviour::none},
    {"wrong_parity", Misbehaviour::wrongParity},
    {"short_pulses", Misbehaviour::shortPulses},
    {"noise", Misbehaviour::noise},
    {"silence", Misbehaviour::silence},
    {"truncated", Misbehaviour::truncated}};

void readPins(TableReader& table, IoBoxDescription& box, unsigned pins)
{
    if (pins == 0) {
        table.fail("listens_on", "the camera has no GPIO pins");
    }
    table.require("listens_on");
    table.integer("listens_on", box.listensOn, 0, pins - 1);
    if (table.has("answers_on")) {
        unsigned pin = 0;
        table.integer("answers_on", pin, 0, pins - 1);
        if (pin == box.listensOn) {
            table.fail("answers_on", "a box cannot answer on the pin that it listens to");
        }
        box.answersOn = pin;
    }
}

void readTimes(TableReader& table, IoBoxDescription& box)
{
    table.integer("half_period_us", box.halfPeriodUs, 4, kSecondUs);
    table.integer("reply_delay_us", box.replyDelayUs, 0, kMinuteUs);
    table.integer("reply_half_period_us", box.shape.halfPeriodUs, 1, kSecondUs);
    table.integer("reply_gap_us", box.shape.gapUs, 1, kMinuteUs);
    if (box.shape.gapUs < 2 * box.shape.halfPeriodUs) {
        table.fail("reply_gap_us", std::to_string(box.shape.gapUs) +
                                       " is less than two reply half periods of " +
                                       std::to_string(box.shape.halfPeriodUs));
    }
}

IoBoxReply readReply(TableReader& table)
{
    IoBoxReply reply;
    if (table.has("command")) {
        unsigned command = 0;
        table.integer("command", command, 0, kMax32);
        reply.command = command;
    }
    table.require("word");
    table.require("bits");
    table.integer("bits", reply.answer.bits, 1, kWordBits);
    table.integer("word", reply.answer.word, 0, (std::uint64_t{1} << reply.answer.bits) - 1);
    table.finish();
    return reply;
}

} // namespace

IoBoxDescription readIoBox(TableReader& table, unsigned pins)
{
    IoBoxDescription box;
    readPins(table, box, pins);
    table.choice("idle", box.shape.idleHigh, kLevels);
    readTimes(table, box);
    table.choice("misbehaviour", box.misbehaviour, kMisbehaviours);
    table.integer("misbehaves", box.misbehaves, 0, kMax32);
    table.integer("seed", box.seed, 0, INT64_MAX);
    table.text("log", box.log);
    for (TableReader& found : table.tables("reply")) {
        box.replies.push_back(readReply(found));
    }
    table.finish();
    return box;
}

} // namespace fcsim
