// A simulated I/O box: listens to an output pin of a camera and answers on an input pin.
#ifndef FCSIM_IO_BOX_H
#define FCSIM_IO_BOX_H

#include "base/newest_ring.h"
#include "description/io_box_description.h"
#include "pins/io_box_decoder.h"
#include "pins/io_box_text.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace fcsim {

/// A box. It acts on the times that it is told and needs no thread: what it has heard and what its
/// answer line shows is worked out when somebody asks. Times never go back. Not thread-safe.
class IoBox {
public:
    explicit IoBox(const IoBoxDescription& description);

    unsigned listensOn() const { return description_.listensOn; }
    bool answersOn(unsigned pin) const { return description_.answersOn == pin; }
    /// The pin that it listens to changes.
    void change(const LineTransition& transition);
    /// Works out what the box has heard until `nowUs`.
    void catchUp(std::uint64_t nowUs);
    /// Level of its answer line. REQUIRES: `catchUp(atUs)`.
    bool level(std::uint64_t atUs) const;
    /// What has been heard since the last call, oldest first; at most the newest 1024 entries.
    std::vector<IoBoxEntry> takeLog() { return log_.take(); }

private:
    static constexpr std::size_t kLogLength = 1024;

    void heard(const HeardFrame& frame);
    std::optional<LineWord> answerTo(const HeardFrame& frame) const;
    Misbehaviour nextMisbehaviour();

    const IoBoxDescription description_;
    LineDecoder decoder_;
    std::vector<LineTransition> plan_; ///< of the newest answer
    std::uint64_t answers_ = 0;        ///< that were due until now
    NewestRing<IoBoxEntry, kLogLength> log_;
    IoBoxText text_;
};

} // namespace fcsim

#endif
