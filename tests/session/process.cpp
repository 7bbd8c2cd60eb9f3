// Runs a program as a process of its own and sees what it prints and how it ends.
#include "process.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kxtest {

namespace {

std::vector<char*> pointersOf(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// This process's environment with `added` in place of what has the same name.
std::vector<std::string> environmentWith(const std::vector<std::string>& added)
{
    std::vector<std::string> all = added;
    for (char** each = environ; *each != nullptr; ++each) {
        const std::string text = *each;
        const std::string name = text.substr(0, text.find('=') + 1);
        bool replaced = false;
        for (const std::string& other : added) {
            replaced = replaced || other.starts_with(name);
        }
        if (!replaced) {
            all.push_back(text);
        }
    }
    return all;
}

/// In the new process: becomes the program, or ends with 127. It dies with this process, so that no
/// endless grab fills the disk when a test is killed. Calls only what is safe after a fork.
[[noreturn]] void become(pid_t parent, char* const* arguments, char* const* environment,
                         const char* output, const char* error)
{
    constexpr int kCannotRun = 127;
    const int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC;
    if (::prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 && ::getppid() == parent &&
        ::dup2(::open(output, flags, 0600), STDOUT_FILENO) >= 0 &&
        ::dup2(::open(error, flags, 0600), STDERR_FILENO) >= 0) {
        ::execve(arguments[0], arguments, environment);
    }
    ::_exit(kCannotRun);
}

} // namespace

Process::Process(const std::vector<std::string>& arguments,
                 const std::vector<std::string>& environment)
{
    std::vector<std::string> argumentTexts = arguments;
    std::vector<std::string> environmentTexts = environmentWith(environment);
    const std::vector<char*> argumentPointers = pointersOf(argumentTexts);
    const std::vector<char*> environmentPointers = pointersOf(environmentTexts);
    const std::string output = standardOutputFile();
    const std::string error = standardErrorFile();
    const pid_t parent = ::getpid();
    pid_ = ::fork();
    if (pid_ == 0) {
        become(parent, argumentPointers.data(), environmentPointers.data(), output.c_str(),
               error.c_str());
    }
    if (pid_ < 0) {
        throw std::runtime_error("cannot run " + arguments.at(0) + ": " + std::strerror(errno));
    }
    end_ = static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0));
}

Process::~Process()
{
    if (running()) {
        signal(SIGKILL);
        wait();
    }
    ::close(end_);
}

void Process::signal(int number) const
{
    if (!ended_) {
        ::kill(pid_, number);
    }
}

int Process::wait(std::chrono::milliseconds limit)
{
    if (ended_) {
        return result_;
    }
    pollfd end{end_, POLLIN, 0};
    if (::poll(&end, 1, static_cast<int>(limit.count())) <= 0) {
        return -1;
    }
    int status = 0;
    if (::waitpid(pid_, &status, 0) == pid_) {
        ended_ = true;
        result_ = WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
    }
    return result_;
}

bool Process::running()
{
    return !ended_ && wait(std::chrono::milliseconds(0)) == -1;
}

Finished run(const std::vector<std::string>& arguments, const std::vector<std::string>& environment)
{
    Process process(arguments, environment);
    const int code = process.wait();
    return {code, process.standardOutput(), process.standardError()};
}

} // namespace kxtest
