// Feeds files to a fuzz target without a fuzzer, each as it is and then changed in a few ways, the
// same ones each time: what was found stays mended, and a short search costs no build of its own.
//
// Usage: fuzz_TARGET FOLDER...
#include "fuzz_input.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Content = std::vector<std::uint8_t>;

constexpr unsigned kChanges = 12; ///< of each file
constexpr unsigned kMostSteps = 4;

/// The files in a folder, sorted; none in one that is not there.
std::vector<fs::path> filesIn(const fs::path& folder)
{
    std::vector<fs::path> files;
    std::error_code none;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, none)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    return files;
}

Content read(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
    return {content.begin(), content.end()};
}

/// A piece of a content, as begin and length.
std::pair<std::ptrdiff_t, std::ptrdiff_t> piece(const Content& content, std::mt19937& random)
{
    const auto begin = static_cast<std::ptrdiff_t>(random() % content.size());
    const auto most = std::min<std::ptrdiff_t>(std::ssize(content) - begin, 32);
    return {begin, 1 + static_cast<std::ptrdiff_t>(random()) % most};
}

void change(Content& content, const Content& other, std::mt19937& random)
{
    if (content.empty() || other.empty()) {
        content.push_back(static_cast<std::uint8_t>(random()));
        return;
    }
    const auto [begin, length] = piece(content, random);
    const auto at = content.begin() + begin;
    const auto [otherBegin, otherLength] = piece(other, random);
    const auto from = other.begin() + otherBegin;
    switch (random() % 4) {
    case 0:
        *at = static_cast<std::uint8_t>(*at ^ (1U << random() % 8));
        break;
    case 1:
        *at = static_cast<std::uint8_t>(random());
        break;
    case 2:
        content.erase(at, at + length);
        break;
    default:
        content.insert(at, from, from + otherLength);
        break;
    }
}

void run(const Content& content)
{
    std::fflush(stdout); // the last line tells what fails
    LLVMFuzzerTestOneInput(content.data(), content.size());
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<fs::path> files;
    for (int word = 1; word < argc; ++word) {
        std::ranges::move(filesIn(argv[word]), std::back_inserter(files));
    }
    Content before;
    for (const fs::path& file : files) {
        const Content content = read(file);
        std::printf("%s\n", file.c_str());
        run(content);
        std::mt19937 random(1);
        for (unsigned number = 1; number <= kChanges; ++number) {
            Content changed = content;
            for (auto steps = 1 + random() % kMostSteps; steps > 0; --steps) {
                change(changed, before, random);
            }
            std::printf("%s, change %u\n", file.c_str(), number);
            run(changed);
        }
        before = content;
    }
    std::printf("%zu files\n", files.size());
    return files.empty() ? 1 : 0;
}
