// Runs a program as a process of its own and sees what it prints and how it ends.
#include "process.h"

#include <csignal>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
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

int toFile(posix_spawn_file_actions_t& actions, int stream, const std::string& path)
{
    return posix_spawn_file_actions_addopen(&actions, stream, path.c_str(),
                                            O_WRONLY | O_CREAT | O_APPEND, 0600);
}

} // namespace

Process::Process(const std::vector<std::string>& arguments,
                 const std::vector<std::string>& environment)
{
    std::vector<std::string> argumentTexts = arguments;
    std::vector<std::string> environmentTexts = environmentWith(environment);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    toFile(actions, STDOUT_FILENO, standardOutputFile());
    toFile(actions, STDERR_FILENO, standardErrorFile());
    const int code =
        posix_spawn(&pid_, arguments.at(0).c_str(), &actions, nullptr,
                    pointersOf(argumentTexts).data(), pointersOf(environmentTexts).data());
    posix_spawn_file_actions_destroy(&actions);
    if (code != 0) {
        throw std::runtime_error("cannot run " + arguments.at(0) + ": " + std::strerror(code));
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
