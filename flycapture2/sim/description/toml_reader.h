// Reads TOML tables key by key and says exactly what is wrong with them.
#ifndef FCSIM_TOML_READER_H
#define FCSIM_TOML_READER_H

#include "description/toml_library.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace fcsim {

/// What is wrong with a description: "file:line: key: reason", on one line.
class DescriptionError : public std::runtime_error {
public:
    explicit DescriptionError(const std::string& text);
};

/// One table. Each getter leaves its target alone when the key is absent, and throws
/// `DescriptionError` when its value is impossible. After the last getter call `finish`.
class TableReader {
public:
    /// `path` is the table's own name with dots, empty for the whole file.
    TableReader(const toml::table& table, std::string path, std::string file);

    bool has(const std::string& key);
    void text(const std::string& key, std::string& target);
    void flag(const std::string& key, bool& target);
    void number(const std::string& key, double& target, double min, double max);
    void number(const std::string& key, float& target, double min, double max);
    void integer(const std::string& key, unsigned& target, std::uint64_t min, std::uint64_t max);
    void integer(const std::string& key, std::uint64_t& target, std::uint64_t min,
                 std::uint64_t max);
    /// An array of two numbers in rising order.
    void range(const std::string& key, float& low, float& high, double min, double max);
    void range(const std::string& key, unsigned& low, unsigned& high, std::uint64_t max);
    /// An array of two whole numbers.
    void pair(const std::string& key, unsigned& first, unsigned& second, std::uint64_t max);
    /// An array of texts; `word` is called for each and answers false for one it does not know.
    template <class Word>
    void words(const std::string& key, const Word& word);
    /// One of the words of `choices`, which holds pairs of word and value.
    template <class Value, class Choices>
    void choice(const std::string& key, Value& target, const Choices& choices);

    std::optional<TableReader> table(const std::string& key);
    std::vector<TableReader> tables(const std::string& key);
    /// All keys of a table whose keys are free, with readers' own checks on them.
    std::vector<std::string> allKeys();

    /// Throws for a key that must be there and is not.
    void require(const std::string& key);
    /// Throws for keys that nobody asked for, with the most similar one that was.
    void finish() const;
    /// Throws: the value of `key` is impossible.
    [[noreturn]] void fail(const std::string& key, const std::string& reason) const;

private:
    const toml::node* find(const std::string& key);
    std::string where(const std::string& key) const;
    double numberOf(const std::string& key, const toml::node& node, double min, double max) const;
    std::uint64_t integerOf(const std::string& key, const toml::node& node, std::uint64_t min,
                            std::uint64_t max) const;
    const toml::array& arrayOf(const std::string& key, const toml::node& node,
                               std::size_t size) const;
    std::string textOf(const std::string& key, const toml::node& node) const;
    std::string nested(const std::string& key) const;

    const toml::table* table_;
    std::string path_;
    std::string file_;
    std::vector<std::string> known_;
};

template <class Word>
void TableReader::words(const std::string& key, const Word& word)
{
    const toml::node* node = find(key);
    if (node == nullptr) {
        return;
    }
    for (const toml::node& element : arrayOf(key, *node, 0)) {
        const std::string value = textOf(key, element);
        if (!word(value)) {
            fail(key, "\"" + value + "\" is not known");
        }
    }
}

template <class Value, class Choices>
void TableReader::choice(const std::string& key, Value& target, const Choices& choices)
{
    const toml::node* node = find(key);
    if (node == nullptr) {
        return;
    }
    const std::string value = textOf(key, *node);
    std::string all;
    for (const auto& [word, meaning] : choices) {
        if (value == word) {
            target = meaning;
            return;
        }
        all += all.empty() ? "" : ", ";
        all += word;
    }
    fail(key, "\"" + value + "\" is none of " + all);
}

} // namespace fcsim

#endif
