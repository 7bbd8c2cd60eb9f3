// What a run may leave behind: nothing that it opened, started or took.
#include "residue.h"

#include <FlyCapture2.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace kxcampaign {

namespace {

/// Index of a camera that somebody still holds, or -1.
int heldCamera()
{
    FlyCapture2::BusManager bus;
    unsigned count = 0;
    static_cast<void>(bus.GetNumOfCameras(&count));
    for (unsigned index = 0; index < count; ++index) {
        FlyCapture2::PGRGuid guid;
        bool free = false;
        static_cast<void>(bus.GetCameraFromIndex(index, &guid));
        static_cast<void>(bus.IsCameraControlable(&guid, &free));
        if (!free) {
            return static_cast<int>(index);
        }
    }
    return -1;
}

std::size_t countCalls(const Outcome& outcome, const char* name)
{
    return static_cast<std::size_t>(
        std::count_if(outcome.events.begin(), outcome.events.end(),
                      [name](const kxtest::Event& event) { return event.name == name; }));
}

std::array<char, 256> watched{};

void onTooLate(int /*signal*/)
{
    const char head[] = "\nno end of: ";
    static_cast<void>(!write(STDERR_FILENO, head, sizeof(head) - 1));
    static_cast<void>(!write(STDERR_FILENO, watched.data(), std::strlen(watched.data())));
    std::_Exit(1);
}

} // namespace

std::string residueOf(const Outcome& outcome, const kxtest::ProcessResources& before)
{
    if (const int camera = heldCamera(); camera >= 0) {
        return "camera " + std::to_string(camera) + " is still held";
    }
    const kxtest::ProcessResources now = kxtest::processResources();
    if (now.threads != before.threads || now.descriptors != before.descriptors) {
        return "threads or descriptors";
    }
    // An exception of no standard type passes through everything.
    if (outcome.thrown != "?" && countCalls(outcome, "KxGi__ResetTermSigProc") !=
                                     countCalls(outcome, "KxGi__SetTermSigProc")) {
        return "termination signals are still kept";
    }
    return "";
}

void watch(const std::string& text)
{
    constexpr unsigned kSeconds = 120;
    std::signal(SIGALRM, onTooLate);
    alarm(0);
    watched.fill('\0');
    text.copy(watched.data(), watched.size() - 1);
    alarm(kSeconds);
}

} // namespace kxcampaign
