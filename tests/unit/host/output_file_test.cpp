// Tests of the files of the export: whole or absent, and nothing but whole lines.
#include "base/output_file.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using kxhost::LineFile;
using kxtest::TemporaryFolder;
using Names = std::vector<std::string>;

/// While it lives no file can grow beyond `bytes`, as on a disk without space.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SmallDisk() { setrlimit(RLIMIT_FSIZE, &before_); }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    rlimit before_{};
};

TEST(OutputFile, IsWrittenWhole)
{
    const TemporaryFolder folder;
    EXPECT_EQ(kxhost::writeWholeFile(folder.file("a.png"), std::vector<std::uint8_t>{'o', 'k'}),
              "");
    EXPECT_EQ(folder.names(), Names{"a.png"});
    EXPECT_EQ(kxtest::readText(folder.file("a.png")), "ok");
}

TEST(OutputFile, ReplacesWhatStoodThere)
{
    const TemporaryFolder folder;
    kxtest::writeText(folder.file("a.png"), "something longer");
    EXPECT_EQ(kxhost::writeWholeFile(folder.file("a.png"), std::vector<std::uint8_t>{'n'}), "");
    EXPECT_EQ(kxtest::readText(folder.file("a.png")), "n");
}

TEST(OutputFile, ALinkStaysALink)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.file("real"));
    kxtest::writeText(folder.file("real/a.json"), "something longer");
    std::filesystem::create_symlink("real/a.json", folder.file("link"));
    std::filesystem::create_symlink("real/new.json", folder.file("ahead"));
    for (const char* const name : {"link", "ahead"}) {
        const std::string path = folder.file(name);
        EXPECT_EQ(kxhost::whyNotWritable(path), "");
        EXPECT_EQ(kxhost::writeWholeFile(path, std::vector<std::uint8_t>{'n'}), "");
        EXPECT_TRUE(std::filesystem::is_symlink(path)) << path;
        EXPECT_EQ(kxtest::readText(path), "n");
    }
    EXPECT_EQ(kxtest::readText(folder.file("real/a.json")), "n");
    EXPECT_EQ(folder.names(), (Names{"ahead", "link", "real"}));
}

TEST(OutputFile, APipeIsWrittenAndStaysAPipe)
{
    const TemporaryFolder folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(kxhost::whyNotWritable(path), "");
    EXPECT_EQ(kxhost::writeWholeFile(path, std::vector<std::uint8_t>{'o', 'k'}), "");
    std::array<char, 8> got{};
    EXPECT_EQ(read(reader, got.data(), got.size()), 2);
    EXPECT_STREQ(got.data(), "ok");
    close(reader);
    EXPECT_TRUE(std::filesystem::is_fifo(path));
    EXPECT_EQ(folder.names(), Names{"pipe"});
}

TEST(OutputFile, ADeviceIsWritten)
{
    EXPECT_EQ(kxhost::whyNotWritable("/dev/full"), "");
    EXPECT_EQ(kxhost::writeWholeFile("/dev/full", std::vector<std::uint8_t>{'x'}),
              "Cannot write /dev/full: No space left on device.");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

TEST(OutputFile, LeavesNothingBehindWhenTheDiskIsFull)
{
    const TemporaryFolder folder;
    const std::string path = folder.file("a.png");
    const SmallDisk disk(100);
    EXPECT_EQ(kxhost::writeWholeFile(path, std::vector<std::uint8_t>(1000, 1)),
              "Cannot write " + path + ": File too large.");
    EXPECT_EQ(folder.names(), Names{});
}

TEST(OutputFile, RemovesWhatAKilledProcessHasLeft)
{
    const TemporaryFolder folder;
    for (const char* name : {".a.png.part", ".b.png.part", "a.png", "a.png.part", ".a.png", ".part",
                             "..part", ".a.part.old"}) {
        kxtest::writeText(folder.file(name), "half");
    }
    Names asked;
    kxhost::removeLeftovers(folder.path().string(), [&](const std::string& name) {
        asked.push_back(name);
        return name == "a.png";
    });
    std::sort(asked.begin(), asked.end());
    EXPECT_EQ(asked, (Names{"a.png", "b.png"}));
    EXPECT_EQ(folder.names(), (Names{"..part", ".a.part.old", ".a.png", ".b.png.part", ".part",
                                     "a.png", "a.png.part"}));
    kxhost::removeLeftovers(folder.file("missing"), [](const std::string&) { return true; });
}

/// What a kill inside of `writeWholeFile` leaves is what `removeLeftovers` takes for such.
TEST(OutputFile, TheTemporaryNameIsTheOneThatIsRemoved)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.file(".a.png.part")); // so it cannot be opened
    EXPECT_EQ(kxhost::writeWholeFile(folder.file("a.png"), {}),
              "Cannot write " + folder.file("a.png") + ": Is a directory.");
}

TEST(OutputFile, NamesTheFileThatItCannotWrite)
{
    const TemporaryFolder folder;
    const std::string path = folder.file("missing/a.png");
    EXPECT_EQ(kxhost::writeWholeFile(path, {}),
              "Cannot write " + path + ": No such file or directory.");
}

TEST(OutputFile, MakesTheFoldersThatAreMissing)
{
    const TemporaryFolder folder;
    EXPECT_EQ(kxhost::prepareFolder(folder.file("x/y")), "");
    EXPECT_TRUE(std::filesystem::is_directory(folder.file("x/y")));
    EXPECT_EQ(kxhost::prepareFolder(folder.file("x/y")), "");
}

TEST(OutputFile, AFolderThatCannotBeIsAnError)
{
    const TemporaryFolder folder;
    kxtest::writeText(folder.file("file"), "");
    EXPECT_EQ(kxhost::prepareFolder(folder.file("file/x")),
              "Cannot create the folder " + folder.file("file/x") + ": Not a directory.");
    EXPECT_EQ(kxhost::prepareFolder(folder.file("file")),
              "Cannot create the folder " + folder.file("file") + ": Not a directory.");
}

TEST(OutputFile, LinesFollowEachOther)
{
    const TemporaryFolder folder;
    kxtest::writeText(folder.file("lines"), "of an earlier grab\n");
    LineFile file;
    file.open(folder.file("lines"));
    EXPECT_EQ(file.append("one\n"), "");
    EXPECT_EQ(file.append("two\n"), "");
    file.close();
    EXPECT_EQ(kxtest::readText(folder.file("lines")), "one\ntwo\n");
}

TEST(OutputFile, ALineThatDoesNotFitIsTakenBackWhole)
{
    const TemporaryFolder folder;
    LineFile file;
    file.open(folder.file("lines"));
    const SmallDisk disk(10);
    EXPECT_EQ(file.append("123456\n"), "");
    EXPECT_EQ(file.append("abcdef\n"),
              "Cannot write " + folder.file("lines") + ": File too large.");
    EXPECT_EQ(kxtest::readText(folder.file("lines")), "123456\n");
}

/// The descriptor under which this process has `path` open; -1 = under none.
int descriptorOf(const std::string& path)
{
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        if (std::filesystem::read_symlink(entry.path(), ignored) == path) {
            return std::stoi(entry.path().filename());
        }
    }
    return -1;
}

TEST(OutputFile, LinesReportAnErrorOfItsClosing)
{
    const TemporaryFolder folder;
    const std::string path = std::filesystem::canonical(folder.path()) / "lines";
    LineFile file;
    file.open(path);
    EXPECT_EQ(file.close(), "") << "nothing was opened yet";
    EXPECT_EQ(file.append("one\n"), "");
    EXPECT_EQ(file.close(), "");
    EXPECT_EQ(file.append("two\n"), "");
    ::close(descriptorOf(path)); // so that closing it again fails
    EXPECT_EQ(file.close(), "Cannot write " + path + ": Bad file descriptor.");
    EXPECT_EQ(file.close(), "") << "told once";
}

} // namespace
