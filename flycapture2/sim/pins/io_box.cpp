// A simulated I/O box: listens to an output pin of a camera and answers on an input pin.
#include "pins/io_box.h"

namespace fcsim {

IoBox::IoBox(const IoBoxDescription& description)
    : description_(description),
      decoder_(timingOfSender(description.halfPeriodUs), description.shape.idleHigh),
      text_(description.log)
{}

void IoBox::change(const LineTransition& transition)
{
    if (const std::optional<HeardFrame> frame = decoder_.change(transition)) {
        heard(*frame);
    }
}

void IoBox::catchUp(std::uint64_t nowUs)
{
    if (const std::optional<HeardFrame> frame = decoder_.wait(nowUs)) {
        heard(*frame);
    }
}

bool IoBox::level(std::uint64_t atUs) const
{
    return levelAt(plan_, atUs, description_.shape.idleHigh);
}

std::optional<LineWord> IoBox::answerTo(const HeardFrame& frame) const
{
    if (!description_.answersOn || frame.verdict != IoBoxVerdict::good) {
        return std::nullopt;
    }
    for (const IoBoxReply& reply : description_.replies) {
        if (reply.command.value_or(frame.word) == frame.word) {
            return reply.answer;
        }
    }
    return description_.replies.empty() ? std::optional(LineWord{frame.word, frame.bits})
                                        : std::nullopt;
}

Misbehaviour IoBox::nextMisbehaviour()
{
    ++answers_;
    const bool overWith = description_.misbehaves != 0 && answers_ > description_.misbehaves;
    return overWith ? Misbehaviour::none : description_.misbehaviour;
}

void IoBox::heard(const HeardFrame& frame)
{
    IoBoxEntry entry;
    entry.verdict = frame.verdict;
    entry.word = frame.word;
    entry.bits = frame.bits;
    entry.firstEdgeUs = frame.firstEdgeUs;
    entry.lastEdgeUs = frame.lastEdgeUs;
    plan_.clear();
    if (const std::optional<LineWord> answer = answerTo(frame)) {
        const Misbehaviour misbehaviour = nextMisbehaviour();
        plan_ = planReply(*answer, description_.shape, frame.endUs + description_.replyDelayUs,
                          misbehaviour, description_.seed + answers_);
        if (!plan_.empty()) {
            entry.answered = true;
            entry.replyWord = answer->word;
            entry.replyBits = answer->bits;
            entry.replyStartUs = plan_.front().atUs;
            entry.replyEndUs = plan_.back().atUs;
        }
    }
    log_.add(entry);
    text_.add(entry);
}

} // namespace fcsim
