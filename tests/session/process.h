// Runs a program as a process of its own and sees what it prints and how it ends.
#ifndef KX_TEST_PROCESS_H
#define KX_TEST_PROCESS_H

#include "temporary_folder.h"

#include <chrono>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kxtest {

/// One running program. It is killed with the object. Its standard streams go to files, so that it
/// never waits for a reader.
class Process {
public:
    /// `arguments[0]` is the program's path. `environment` holds NAME=value pairs that are added to
    /// this process's environment.
    explicit Process(const std::vector<std::string>& arguments,
                     const std::vector<std::string>& environment = {});
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void signal(int number) const;
    /// Waits for the end. Returns the exit status, 1000 + number after a signal, or -1 when it runs
    /// on after `limit`.
    int wait(std::chrono::milliseconds limit = std::chrono::seconds(20));
    bool running();

    pid_t pid() const { return pid_; }

    /// The files that its streams go to.
    std::string standardOutputFile() const { return streams_.file("out"); }
    std::string standardErrorFile() const { return streams_.file("err"); }
    /// What it has printed so far.
    std::string standardOutput() const { return readText(standardOutputFile()); }
    std::string standardError() const { return readText(standardErrorFile()); }

private:
    TemporaryFolder streams_;
    pid_t pid_ = -1;
    int end_ = -1; // becomes readable when the process ends
    int result_ = -1;
    bool ended_ = false;
};

/// What a program that ran to its end left.
struct Finished {
    int code = -1;
    std::string out;
    std::string err;
};
Finished run(const std::vector<std::string>& arguments,
             const std::vector<std::string>& environment = {});

} // namespace kxtest

#endif
