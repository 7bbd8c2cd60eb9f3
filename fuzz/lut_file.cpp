// Fuzz target: look-up tables from files.
#include "config/lut_file.h"

#include "config/settings.h"
#include "fuzz_input.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace kxfuzz {
namespace {

using Entries = std::vector<std::uint16_t>;

/// A file in memory that has a name for each of the reader's forms. The names stay for the life of
/// the process.
class MemoryFile {
public:
    MemoryFile() : descriptor_(memfd_create("fuzz", 0))
    {
        KX_MUST(descriptor_ >= 0);
        std::string folder = (std::filesystem::temp_directory_path() / "kx-fuzz-XXXXXX").string();
        KX_MUST(mkdtemp(folder.data()) != nullptr);
        folder_ = folder;
        const std::string file = "/proc/self/fd/" + std::to_string(descriptor_);
        for (const bool binary : {false, true}) {
            std::filesystem::create_symlink(file, path(binary));
        }
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
        close(descriptor_);
    }

    std::string path(bool binary) const { return folder_ / (binary ? "table.Bin" : "table.txt"); }

    void write(std::string_view content) const
    {
        const auto size = static_cast<ssize_t>(content.size());
        KX_MUST(ftruncate(descriptor_, 0) == 0);
        KX_MUST(pwrite(descriptor_, content.data(), content.size(), 0) == size);
    }

private:
    int descriptor_;
    std::filesystem::path folder_;
};

/// Reads as the header of the reader says, in another way than it does.
std::optional<Entries> expectedBinary(std::string_view content, unsigned bits)
{
    Entries entries;
    if (content.size() != 2 * kxhost::kLutEntries) {
        return std::nullopt;
    }
    for (std::size_t at = 0; at < content.size(); at += 2) {
        const auto low = static_cast<unsigned char>(content[at]);
        const auto high = static_cast<unsigned char>(content[at + 1]);
        entries.push_back(static_cast<std::uint16_t>(low + 256 * high));
        if (entries.back() >= 1U << bits) {
            return std::nullopt;
        }
    }
    return entries;
}

std::optional<std::uint16_t> numberIn(const std::string& word, unsigned bits)
{
    const bool digits = word.find_first_not_of("0123456789") == std::string::npos;
    const std::size_t start = std::min(word.find_first_not_of('0'), word.size());
    if (!digits || word.size() - start > 5) {
        return std::nullopt;
    }
    const unsigned long value = std::strtoul(word.c_str(), nullptr, 10);
    return value < 1UL << bits ? std::optional(static_cast<std::uint16_t>(value)) : std::nullopt;
}

std::optional<Entries> expectedText(std::string_view content, unsigned bits)
{
    Entries entries;
    std::string word;
    bool comment = false;
    const auto endWord = [&] {
        const auto number = numberIn(word, bits);
        const bool good = word.empty() || number;
        if (!word.empty() && number) {
            entries.push_back(*number);
        }
        word.clear();
        return good;
    };
    for (const char letter : std::string(content) + "\n") {
        if (letter == '\0') {
            return std::nullopt;
        }
        comment = (comment || letter == '#') && letter != '\n';
        const bool between =
            comment || std::string_view(" \t\r\n,;").find(letter) != std::string::npos;
        if (!between) {
            word += letter;
        } else if (!endWord()) {
            return std::nullopt;
        }
    }
    return entries.size() == kxhost::kLutEntries ? std::optional(entries) : std::nullopt;
}

std::string written(const Entries& entries, bool binary)
{
    std::string content;
    for (const std::uint16_t entry : entries) {
        if (binary) {
            content += static_cast<char>(entry & 0xFFU);
            content += static_cast<char>(entry >> 8U);
        } else {
            content += std::to_string(entry) + "\n";
        }
    }
    return content;
}

void lutFile(Input input)
{
    static const MemoryFile file;
    Bytes bytes(input);
    const auto head = bytes.take<std::uint8_t>();
    const bool binary = (head & 0x10U) != 0;
    const unsigned bits = (head & 0xFU) + 1U;
    const std::string path = file.path(binary);
    const std::string_view content = textOf(bytes.rest());
    file.write(content);

    const Entries before = {1, 2, 3};
    Entries entries = before;
    const std::string problem = kxhost::readLutFile(path, bits, entries);
    const auto expected = binary ? expectedBinary(content, bits) : expectedText(content, bits);
    KX_MUST(problem.empty() == expected.has_value());
    KX_MUST(entries == expected.value_or(before));
    if (!problem.empty()) {
        KX_MUST(problem.starts_with(path));
        KX_MUST(problem.find('\n') == std::string::npos);
        return;
    }
    // The same table in the other form.
    file.write(written(entries, !binary));
    Entries again;
    KX_MUST(kxhost::readLutFile(file.path(!binary), bits, again).empty());
    KX_MUST(again == entries);
}

} // namespace
} // namespace kxfuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    kxfuzz::lutFile({data, size});
    return 0;
}
