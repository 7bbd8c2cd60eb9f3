// The camera library that a grab would load: found out by loading it, in a process of its own.
#include "doctor/doctor_library.h"

#include "base/descriptor.h"

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <sstream>

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kxhost {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr const char* kLibraryName = "libflycapture.so.2";

/// A library has long begun by then.
constexpr auto kTimeToLoad = 20s;

/// Where libraries of the maker are put that the loader does not look at by itself.
constexpr std::array kOtherFolders = {"/usr/local/lib", "/usr/lib", "/usr/lib64"};

/// In the child: the loaded library's path and kind.
std::string describeLoaded()
{
    void* const library = dlopen(kLibraryName, RTLD_NOW | RTLD_NOLOAD);
    link_map* map = nullptr;
    if (library == nullptr || dlinfo(library, RTLD_DI_LINKMAP, &map) != 0) {
        return {};
    }
    const bool simulated = dlsym(library, "fcsimBusUsable") != nullptr;
    return std::to_string(kExitFine) + "\n" + (simulated ? "1" : "0") + "\n" + map->l_name + "\n";
}

/// In the child: what the loading comes to, as three lines.
std::string tryLoading(const PluginChoice& choice)
{
    try {
        const Plugin plugin(choice);
        return describeLoaded();
    } catch (const LoadError& error) {
        return std::to_string(error.exitCode()) + "\n0\n" + error.what() + "\n";
    }
}

/// The child: loads, tells, and ends without any of this process's handlers. What a library prints
/// is not part of the answer.
[[noreturn]] void runChild(const PluginChoice& choice, int answer)
{
    dup2(STDERR_FILENO, STDOUT_FILENO);
    const std::string text = tryLoading(choice);
    const bool told = write(answer, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    _exit(told ? 0 : 1);
}

/// Everything until the other end is closed; nothing = that took too long.
std::optional<std::string> readAll(int descriptor)
{
    const auto until = Clock::now() + kTimeToLoad;
    std::string all;
    std::array<char, 1024> piece{};
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
        pollfd wait{descriptor, POLLIN, 0};
        if (left.count() <= 0 || poll(&wait, 1, static_cast<int>(left.count())) == 0) {
            return std::nullopt;
        }
        const ssize_t got = read(descriptor, piece.data(), piece.size());
        if (got <= 0) {
            return all;
        }
        all.append(piece.data(), static_cast<std::size_t>(got));
    }
}

LibraryFacts understand(const std::string& answer)
{
    LibraryFacts facts;
    std::istringstream lines(answer);
    int code = 0;
    int simulated = 0;
    std::string text;
    if (!(lines >> code >> simulated) || !std::getline(lines >> std::ws, text)) {
        return facts;
    }
    facts.exitCode = static_cast<ExitCode>(code);
    facts.simulated = simulated != 0;
    facts.outcome =
        code == kExitFine ? LibraryFacts::Outcome::kLoaded : LibraryFacts::Outcome::kRefused;
    if (facts.outcome == LibraryFacts::Outcome::kRefused) {
        facts.reason = text;
        return facts;
    }
    std::error_code ignored;
    const std::filesystem::path real = std::filesystem::canonical(text, ignored);
    facts.path = real.empty() ? text : real.string();
    return facts;
}

LibraryFacts askChild(const PluginChoice& choice)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot look at the library");
    }
    const Descriptor reading(ends[0], "");
    const pid_t child = fork();
    if (child == 0) {
        runChild(choice, ends[1]);
    }
    close(ends[1]);
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot look at the library");
    }
    const std::optional<std::string> answer = readAll(reading.number());
    kill(child, SIGKILL); // it has said all, or never will
    waitpid(child, nullptr, 0);
    if (answer) {
        return understand(*answer);
    }
    LibraryFacts facts;
    facts.outcome = LibraryFacts::Outcome::kHung;
    return facts;
}

/// The first folder of the tree with such a library.
std::string findUnseen(const Tree& tree)
{
    for (const char* const folder : kOtherFolders) {
        if (tree.has(std::string(folder) + "/" + kLibraryName)) {
            return folder;
        }
    }
    return {};
}

Check judgeRefusal(const LibraryFacts& facts, Check check)
{
    check.verdict = Verdict::kFail;
    check.found = "not loaded";
    check.note = facts.reason;
    switch (facts.exitCode) {
    case kExitNoLibrary:
        if (!facts.unseenFolder.empty()) {
            check.command = "echo " + facts.unseenFolder +
                            " | sudo tee /etc/ld.so.conf.d/flycapture.conf && sudo ldconfig";
        } else if (facts.searched) {
            check.command = "kxhost doctor --camera-library FILE";
        }
        break;
    case kExitLibraryAge:
        check.found = "of another release than the plug-in";
        check.command = "cmake --preset release -DFLYCAPTURE2_ROOT=/usr && cmake --build "
                        "build/release && sudo cmake --install build/release";
        break;
    default:
        break;
    }
    return check;
}

/// The releases that the plug-in's side of the interface is that of.
bool isKnown(const std::string& release)
{
    constexpr int kMajor = 2;
    constexpr int kNewestMinor = 13;
    std::istringstream numbers(release);
    int major = 0;
    int minor = 0;
    char dot = 0;
    numbers >> major >> dot >> minor;
    return major < kMajor || (major == kMajor && minor <= kNewestMinor);
}

} // namespace

std::string releaseOf(const std::string& path)
{
    const std::string name = std::filesystem::path(path).filename().string();
    constexpr std::string_view kBefore = "libflycapture.so.";
    const std::string release =
        name.starts_with(kBefore) ? name.substr(kBefore.size()) : std::string();
    return release.find('.') == std::string::npos ? "" : release;
}

LibraryFacts readLibrary(const PluginChoice& choice, const Tree& tree)
{
    LibraryFacts facts = askChild(choice);
    facts.searched = choice.cameraLibrary.empty() && !choice.simulate;
    if (facts.exitCode == kExitNoLibrary && facts.searched) {
        facts.unseenFolder = findUnseen(tree);
    }
    return facts;
}

Check judgeLibrary(const LibraryFacts& facts)
{
    Check check{"camera-library", "", Verdict::kOk, "", "release 2.10 to 2.13", "", ""};
    switch (facts.outcome) {
    case LibraryFacts::Outcome::kRefused:
        return judgeRefusal(facts, check);
    case LibraryFacts::Outcome::kCrashed:
        check.verdict = Verdict::kFail;
        check.found = "crashed while it was loaded";
        return check;
    case LibraryFacts::Outcome::kHung:
        check.verdict = Verdict::kUnknown;
        check.found = "loading it does not end";
        return check;
    case LibraryFacts::Outcome::kLoaded:
        break;
    }
    if (facts.simulated) {
        check.found = "simulated cameras";
        check.note = facts.path;
        return check;
    }
    const std::string release = releaseOf(facts.path);
    check.found = release.empty() ? "of a release that its name does not tell" : release;
    check.note = facts.path;
    if (!isKnown(release)) {
        check.verdict = Verdict::kWarn;
        check.note += "; newer than the plug-in was made for: build the plug-in with its headers.";
    }
    return check;
}

} // namespace kxhost
