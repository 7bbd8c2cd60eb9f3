// Reports on standard output: there whatever it is diverted to meanwhile, or missed.
#include "base/exit_code.h"
#include "base/standard_output.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

using kxhost::keepStandardOutput;
using kxhost::printReport;

/// While it lives, standard output goes to this descriptor, which it closes.
class Diversion {
public:
    explicit Diversion(int to) : before_(dup(STDOUT_FILENO))
    {
        std::fflush(stdout);
        dup2(to, STDOUT_FILENO);
        close(to);
    }
    ~Diversion()
    {
        std::fflush(stdout);
        dup2(before_, STDOUT_FILENO);
        close(before_);
    }
    Diversion(const Diversion&) = delete;
    Diversion& operator=(const Diversion&) = delete;

private:
    int before_;
};

int opened(const std::string& path)
{
    return open(path.c_str(), O_WRONLY | O_CREAT, 0600);
}

TEST(StandardOutput, AReportGoesWhereOutputWentAtTheStart)
{
    const kxtest::TemporaryFolder folder;
    {
        const Diversion outside(opened(folder.file("out")));
        keepStandardOutput();
        std::printf("log\n");
        std::fflush(stdout);
        const Diversion log(opened(folder.file("log")));
        EXPECT_EQ(printReport("report\n"), "");
        EXPECT_EQ(printReport("more\n", kxhost::kExitCamera), kxhost::kExitCamera);
    }
    EXPECT_EQ(kxtest::readText(folder.file("out")), "log\nreport\nmore\n");
    EXPECT_EQ(kxtest::readText(folder.file("log")), "");
}

TEST(StandardOutput, AReportThatIsNotThereIsAnErrorUnlessThereIsAnother)
{
    const Diversion full(opened("/dev/full"));
    keepStandardOutput();
    EXPECT_EQ(printReport("report\n"), "Cannot write standard output: No space left on device.");
    EXPECT_EQ(printReport("report\n", kxhost::kExitFine), kxhost::kExitExport);
    EXPECT_EQ(printReport("report\n", kxhost::kExitMend), kxhost::kExitMend);
}

/// Who has the same pipe may have set it so.
TEST(StandardOutput, AnOutputThatDoesNotWaitIsWaitedFor)
{
    constexpr std::size_t kMoreThanAPipeHolds = 3'000'000;
    constexpr int kLimitMs = 20'000;
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_NONBLOCK), 0);
    std::size_t seen = 0;
    std::thread reader([&seen, from = ends[0]] {
        std::array<char, 4096> piece{};
        while (seen < kMoreThanAPipeHolds) {
            pollfd ready{from, POLLIN, 0};
            if (poll(&ready, 1, kLimitMs) <= 0) {
                return; // nothing more will come
            }
            const ssize_t got = read(from, piece.data(), piece.size());
            seen += got > 0 ? static_cast<std::size_t>(got) : 0;
        }
    });
    {
        const Diversion slow(ends[1]);
        keepStandardOutput();
        EXPECT_EQ(printReport(std::string(kMoreThanAPipeHolds, 'x')), "");
    }
    reader.join();
    close(ends[0]);
    EXPECT_EQ(seen, kMoreThanAPipeHolds);
}

TEST(StandardOutput, AReaderWhoHasGoneMissesNothing)
{
    std::signal(SIGPIPE, SIG_IGN);
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    close(ends[0]);
    const Diversion gone(ends[1]);
    keepStandardOutput();
    EXPECT_EQ(printReport("report\n", kxhost::kExitFine), kxhost::kExitFine);
}

} // namespace
