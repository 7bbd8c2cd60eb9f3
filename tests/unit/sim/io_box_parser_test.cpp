// Descriptions of I/O boxes: every key, its default, and what is refused.
#include "sim_fixture.h"

#include <gtest/gtest.h>

#include <description/bus_parser.h>

using fcsim::IoBoxDescription;
using fcsim::Misbehaviour;

namespace {

std::string boxToml(const std::string& keys)
{
    return cameraToml("[[camera.io_box]]\n" + keys);
}

IoBoxDescription boxOf(const std::string& keys)
{
    const fcsim::ParsedBus parsed = fcsim::parseBus(boxToml(keys), "bus.toml");
    EXPECT_EQ(parsed.problem, "");
    if (parsed.bus.cameras.empty()) {
        return {};
    }
    return parsed.bus.cameras[0].ioBoxes.at(0);
}

/// The message without the place, which is the same for all.
std::string problemOf(const std::string& keys)
{
    const std::string problem = fcsim::parseBus(boxToml(keys), "bus.toml").problem;
    const std::size_t key = problem.find("camera.io_box.");
    return key == std::string::npos ? problem : problem.substr(key + 14);
}

TEST(IoBoxParser, DefaultsSuitTheUsualSenderAndReceiver)
{
    const IoBoxDescription box = boxOf("listens_on = 2\n");
    EXPECT_EQ(box.listensOn, 2U);
    EXPECT_FALSE(box.answersOn);
    EXPECT_FALSE(box.shape.idleHigh);
    EXPECT_EQ(box.halfPeriodUs, 2000U);
    EXPECT_EQ(box.replyDelayUs, 60'000U);
    EXPECT_EQ(box.shape.halfPeriodUs, 12'000U);
    EXPECT_EQ(box.shape.gapUs, 44'000U);
    EXPECT_TRUE(box.replies.empty());
    EXPECT_EQ(box.misbehaviour, Misbehaviour::none);
    EXPECT_EQ(box.misbehaves, 0U);
    EXPECT_EQ(box.seed, 1U);
    EXPECT_EQ(box.log, "");
}

TEST(IoBoxParser, EveryKeyIsRead)
{
    const IoBoxDescription box =
        boxOf("listens_on = 3\nanswers_on = 0\nidle = \"high\"\nhalf_period_us = 3000\n"
              "reply_delay_us = 4\nreply_half_period_us = 10\nreply_gap_us = 20\n"
              "misbehaviour = \"noise\"\nmisbehaves = 6\nseed = 7\nlog = \"box.log\"\n"
              "[[camera.io_box.reply]]\ncommand = 914\nword = 255\nbits = 8\n"
              "[[camera.io_box.reply]]\nword = 0xFFFFFFFF\nbits = 32\n");
    EXPECT_EQ(box.listensOn, 3U);
    EXPECT_EQ(box.answersOn, 0U);
    EXPECT_TRUE(box.shape.idleHigh);
    EXPECT_EQ(box.halfPeriodUs, 3000U);
    EXPECT_EQ(box.replyDelayUs, 4U);
    EXPECT_EQ(box.shape.halfPeriodUs, 10U);
    EXPECT_EQ(box.shape.gapUs, 20U);
    EXPECT_EQ(box.misbehaviour, Misbehaviour::noise);
    EXPECT_EQ(box.misbehaves, 6U);
    EXPECT_EQ(box.seed, 7U);
    EXPECT_EQ(box.log, "box.log");
    ASSERT_EQ(box.replies.size(), 2U);
    EXPECT_EQ(box.replies[0].command, 914U);
    EXPECT_EQ(box.replies[0].answer.word, 255U);
    EXPECT_EQ(box.replies[0].answer.bits, 8U);
    EXPECT_FALSE(box.replies[1].command);
    EXPECT_EQ(box.replies[1].answer.word, 0xFFFFFFFFU);
}

TEST(IoBoxParser, EveryMisbehaviourHasItsWord)
{
    const std::pair<const char*, Misbehaviour> words[] = {
        {"none", Misbehaviour::none},
        {"wrong_parity", Misbehaviour::wrongParity},
        {"short_pulses", Misbehaviour::shortPulses},
        {"silence", Misbehaviour::silence},
        {"truncated", Misbehaviour::truncated}};
    for (const auto& [word, meaning] : words) {
        EXPECT_EQ(
            boxOf("listens_on = 0\nmisbehaviour = \"" + std::string(word) + "\"\n").misbehaviour,
            meaning);
    }
}

TEST(IoBoxParser, WhatCannotBeIsRefused)
{
    EXPECT_EQ(problemOf("answers_on = 1\n"), "listens_on: this key is missing");
    EXPECT_EQ(problemOf("listens_on = 4\n"), "listens_on: 4 is not within 0 to 3");
    EXPECT_EQ(problemOf("listens_on = 1\nanswers_on = 1\n"),
              "answers_on: a box cannot answer on the pin that it listens to");
    EXPECT_EQ(problemOf("listens_on = 1\nidle = \"up\"\n"), "idle: \"up\" is none of low, high");
    EXPECT_EQ(problemOf("listens_on = 1\nreply_gap_us = 23999\n"),
              "reply_gap_us: 23999 is less than two reply half periods of 12000");
    EXPECT_EQ(problemOf("listens_on = 1\n[[camera.io_box.reply]]\nbits = 8\n"),
              "reply.word: this key is missing");
    EXPECT_EQ(problemOf("listens_on = 1\n[[camera.io_box.reply]]\nword = 8\n"),
              "reply.bits: this key is missing");
    EXPECT_EQ(problemOf("listens_on = 1\n[[camera.io_box.reply]]\nword = 8\nbits = 33\n"),
              "reply.bits: 33 is not within 1 to 32");
    EXPECT_EQ(problemOf("listens_on = 1\n[[camera.io_box.reply]]\nword = 8\nbits = 3\n"),
              "reply.word: 8 is not within 0 to 7");
    EXPECT_NE(problemOf("listens_on = 1\nlisten = 1\n").find("listen: unknown key"),
              std::string::npos);
}

TEST(IoBoxParser, TwoBoxesCannotAnswerOnOnePin)
{
    EXPECT_EQ(problemOf("listens_on = 1\nanswers_on = 0\n"
                        "[[camera.io_box]]\nlistens_on = 2\nanswers_on = 0\n"),
              "answers_on: another box answers on pin 0 already");
}

TEST(IoBoxParser, ACameraWithoutPinsHasNoBox)
{
    std::string toml = boxToml("listens_on = 0\n");
    toml.insert(toml.find("interface"), "gpio_pins = 0\n");
    EXPECT_NE(fcsim::parseBus(toml, "bus.toml").problem.find("the camera has no GPIO pins"),
              std::string::npos);
}

} // namespace
