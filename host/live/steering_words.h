// The words by which people steer a grab, and the signals that do it.
#ifndef KXHOST_STEERING_WORDS_H
#define KXHOST_STEERING_WORDS_H

#include "grab/pending_signals.h"

#include <array>
#include <csignal>
#include <string_view>

namespace kxhost {

/// What `kxhost ctl` and the live page call a signal.
struct SteeringWord {
    std::string_view word;
    int signal;
    SignalCode code;
};
inline constexpr std::array kSteeringWords = {
    SteeringWord{"finish", SIGTERM, kFinishTerminate}, SteeringWord{"reload", SIGHUP, kReload},
    SteeringWord{"lut", SIGUSR1, kLut}, SteeringWord{"lut12", SIGUSR2, kLut12}};

/// Null = there is no such word.
constexpr const SteeringWord* findSteeringWord(std::string_view word)
{
    for (const SteeringWord& each : kSteeringWords) {
        if (each.word == word) {
            return &each;
        }
    }
    return nullptr;
}

} // namespace kxhost

#endif
