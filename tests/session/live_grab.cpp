// A grab that goes on until it is told to end, steered and watched from outside while it runs.
#include "live_grab.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace kxtest {

namespace {

using namespace std::chrono_literals;

/// No state of these tests takes a fraction of it, not even under a sanitizer on a busy machine.
constexpr auto kLimit = 20s;
/// Between two looks at the files.
constexpr auto kLook = 2ms;

/// What is left of a long log to be shown.
std::string endOf(const std::string& log)
{
    constexpr std::size_t kShown = 3000;
    return log.size() <= kShown ? log : "[...]" + log.substr(log.size() - kShown);
}

std::unique_ptr<Process> startEndless(GrabSession& session)
{
    session.set("grab.frames=0");
    session.endsWithTest = true;
    return session.start();
}

} // namespace

std::vector<std::string> GrowingFile::newLines()
{
    std::vector<std::string> lines;
    std::ifstream file(path_, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(read_));
    for (std::string line; std::getline(file, line) && !file.eof();) {
        read_ += line.size() + 1;
        lines.push_back(line);
    }
    return lines;
}

LiveGrab::LiveGrab(GrabSession& session)
    : session_(session), process_(startEndless(session)),
      metadata_(session.output("frames.ndjson")), log_(process_->standardOutputFile()),
      messages_(process_->standardErrorFile())
{}

void LiveGrab::update()
{
    for (const std::string& line : metadata_.newLines()) {
        frames_.push_back(Json::parse(line));
    }
    for (Stream* stream : {&log_, &messages_}) {
        for (const std::string& line : stream->file.newLines()) {
            stream->lines.push_back(line);
        }
    }
}

void LiveGrab::waitFor(const std::string& what, const std::function<bool()>& isThere)
{
    const auto until = std::chrono::steady_clock::now() + kLimit;
    while (true) {
        // What a process wrote before its end is looked at, too.
        const bool runs = process_->running();
        update();
        if (isThere()) {
            return;
        }
        if (!runs || std::chrono::steady_clock::now() > until) {
            throw std::runtime_error("no " + what + (runs ? " in time" : " before the end") +
                                     "; kxhost said:\n" + process_->standardError() +
                                     endOf(process_->standardOutput()));
        }
        process_->wait(kLook);
    }
}

void LiveGrab::waitForMoreFrames(std::size_t count)
{
    const std::size_t wanted = frames_.size() + count;
    waitFor(std::to_string(count) + " frames more", [&] { return frames_.size() >= wanted; });
}

LiveGrab::Json LiveGrab::waitForFrame(const std::string& what, const Wanted& wanted)
{
    waitFor(what, [&] {
        while (nextFrame_ < frames_.size()) {
            if (wanted(frames_[nextFrame_++])) {
                return true;
            }
        }
        return false;
    });
    return frames_[nextFrame_ - 1];
}

std::string LiveGrab::waitForLine(Stream& stream, const std::string& part)
{
    waitFor("line \"" + part + "\"", [&] {
        while (stream.next < stream.lines.size()) {
            if (stream.lines[stream.next++].find(part) != std::string::npos) {
                return true;
            }
        }
        return false;
    });
    return stream.lines[stream.next - 1];
}

std::string LiveGrab::waitForLog(const std::string& part)
{
    return waitForLine(log_, part);
}

std::string LiveGrab::waitForMessage(const std::string& part)
{
    return waitForLine(messages_, part);
}

void LiveGrab::writeConfiguration(const std::string& text) const
{
    writeText(session_.configurationFile(), text);
}

void LiveGrab::renameConfiguration(const std::string& text) const
{
    const std::string written = session_.configurationFile() + ".new";
    writeText(written, text);
    std::filesystem::rename(written, session_.configurationFile());
}

int LiveGrab::finish(int number)
{
    signal(number);
    const int code = process_->wait(kLimit);
    update();
    return code;
}

} // namespace kxtest
