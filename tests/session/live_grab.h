// A grab that goes on until it is told to end, steered and watched from outside while it runs.
#ifndef KX_TEST_LIVE_GRAB_H
#define KX_TEST_LIVE_GRAB_H

#include "grab_session.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kxtest {

/// Reads whole lines off the end of a file that another process writes.
class GrowingFile {
public:
    explicit GrowingFile(std::string path) : path_(std::move(path)) {}
    /// The lines that were completed since the last call.
    std::vector<std::string> newLines();

private:
    std::string path_;
    std::size_t read_ = 0; ///< bytes of the lines handed out
};

/// Waits only for states, with a limit far beyond what they take: a wait that does not come true
/// throws, which fails the test and says what was waited for and what kxhost had printed.
class LiveGrab {
public:
    using Json = nlohmann::json;
    using Wanted = std::function<bool(const Json& frame)>;

    /// Starts kxhost. `session` must outlive this object; `grab.frames` is set to 0.
    explicit LiveGrab(GrabSession& session);

    void signal(int number) const { process_->signal(number); }
    Process& process() { return *process_; }

    /// The frames that were complete at the last wait.
    const std::vector<Json>& frames() const { return frames_; }
    /// Waits for this many frames more than were known at the last wait.
    void waitForMoreFrames(std::size_t count);
    /// Waits for a frame as wanted among those that no earlier call has looked at.
    Json waitForFrame(const std::string& what, const Wanted& wanted);
    /// Waits for a line of the plug-in's log, or of kxhost's own messages, that holds `part` and
    /// comes after those that earlier calls have returned. Returns the line.
    std::string waitForLog(const std::string& part);
    std::string waitForMessage(const std::string& part);

    /// Changes the configuration file as `echo >` does, and as an editor that writes a new file and
    /// renames it.
    void writeConfiguration(const std::string& text) const;
    void renameConfiguration(const std::string& text) const;

    /// Asks for the end, waits for it and returns kxhost's exit code.
    int finish(int number = SIGINT);

private:
    struct Stream {
        explicit Stream(std::string path) : file(std::move(path)) {}
        GrowingFile file;
        std::vector<std::string> lines;
        std::size_t next = 0; ///< the first line not yet looked at
    };

    void update();
    void waitFor(const std::string& what, const std::function<bool()>& isThere);
    std::string waitForLine(Stream& stream, const std::string& part);

    GrabSession& session_;
    std::unique_ptr<Process> process_;
    GrowingFile metadata_;
    std::vector<Json> frames_;
    std::size_t nextFrame_ = 0; ///< the first frame that no wait has looked at
    Stream log_;
    Stream messages_;
};

} // namespace kxtest

#endif
