// Reads TOML tables key by key and says exactly what is wrong with them.
#include "description/toml_reader.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <sstream>

namespace fcsim {

namespace {

/// How many letters have to be inserted, removed or replaced to turn one word into the other.
std::size_t distance(const std::string& a, const std::string& b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

/// Hint at the most similar of the known keys; empty when none is similar.
std::string suggestion(const std::string& key, const std::vector<std::string>& known)
{
    const std::string* best = nullptr;
    std::size_t least = std::max<std::size_t>(2, key.size() / 3) + 1;
    for (const std::string& candidate : known) {
        const std::size_t steps = distance(key, candidate);
        if (steps < least) {
            least = steps;
            best = &candidate;
        }
    }
    return best == nullptr ? std::string() : "; did you mean \"" + *best + "\"?";
}

std::string plain(double value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

/// Control characters as TOML escapes them: keys may hold any, and a message is one line.
std::string printable(const std::string& text)
{
    std::string result;
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        constexpr unsigned char kDelete = 0x7F;
        if (code >= ' ' && code != kDelete) {
            result += character;
            continue;
        }
        constexpr const char* kDigits = "0123456789ABCDEF";
        result.append("\\u00") += kDigits[code >> 4U];
        result += kDigits[code & 0xFU];
    }
    return result;
}

} // namespace

DescriptionError::DescriptionError(const std::string& text) : std::runtime_error(printable(text)) {}

TableReader::TableReader(const toml::table& table, std::string path, std::string file)
    : table_(&table), path_(std::move(path)), file_(std::move(file))
{}

std::string TableReader::nested(const std::string& key) const
{
    return path_.empty() ? key : path_ + "." + key;
}

std::string TableReader::where(const std::string& key) const
{
    const toml::node* node = table_->get(key);
    const auto line = (node != nullptr ? node->source() : table_->source()).begin.line;
    return file_ + ":" + std::to_string(std::max<toml::source_index>(line, 1)) + ": " +
           nested(key) + ": ";
}

void TableReader::fail(const std::string& key, const std::string& reason) const
{
    throw DescriptionError(where(key) + reason);
}

const toml::node* TableReader::find(const std::string& key)
{
    known_.push_back(key);
    return table_->get(key);
}

bool TableReader::has(const std::string& key)
{
    return find(key) != nullptr;
}

void TableReader::require(const std::string& key)
{
    if (!has(key)) {
        fail(key, "this key is missing");
    }
}

void TableReader::finish() const
{
    for (const auto& [name, node] : *table_) {
        const std::string key(name.str());
        if (std::find(known_.begin(), known_.end(), key) == known_.end()) {
            fail(key, "unknown key" + suggestion(key, known_));
        }
    }
}

std::string TableReader::textOf(const std::string& key, const toml::node& node) const
{
    const auto* value = node.as_string();
    if (value == nullptr) {
        fail(key, "must be a text");
    }
    return value->get();
}

double TableReader::numberOf(const std::string& key, const toml::node& node, double min,
                             double max) const
{
    const std::optional<double> value = node.is_number() ? node.value<double>() : std::nullopt;
    if (!value) {
        fail(key, "must be a number");
    }
    if (!(*value >= min && *value <= max)) {
        fail(key, plain(*value) + " is not within " + plain(min) + " to " + plain(max));
    }
    return *value;
}

std::uint64_t TableReader::integerOf(const std::string& key, const toml::node& node,
                                     std::uint64_t min, std::uint64_t max) const
{
    const auto* value = node.as_integer();
    if (value == nullptr) {
        fail(key, "must be a whole number");
    }
    const std::int64_t given = value->get();
    if (given < 0 || static_cast<std::uint64_t>(given) < min ||
        static_cast<std::uint64_t>(given) > max) {
        fail(key, std::to_string(given) + " is not within " + std::to_string(min) + " to " +
                      std::to_string(max));
    }
    return static_cast<std::uint64_t>(given);
}

const toml::array& TableReader::arrayOf(const std::string& key, const toml::node& node,
                                        std::size_t size) const
{
    const toml::array* array = node.as_array();
    if (array == nullptr || (size > 0 && array->size() != size)) {
        fail(key, size > 0 ? "must be an array of " + std::to_string(size) + " numbers"
                           : std::string("must be an array"));
    }
    return *array;
}

void TableReader::text(const std::string& key, std::string& target)
{
    if (const toml::node* node = find(key)) {
        target = textOf(key, *node);
    }
}

void TableReader::flag(const std::string& key, bool& target)
{
    const toml::node* node = find(key);
    if (node == nullptr) {
        return;
    }
    if (!node->is_boolean()) {
        fail(key, "must be true or false");
    }
    target = node->as_boolean()->get();
}

void TableReader::number(const std::string& key, double& target, double min, double max)
{
    if (const toml::node* node = find(key)) {
        target = numberOf(key, *node, min, max);
    }
}

void TableReader::number(const std::string& key, float& target, double min, double max)
{
    double value = double{target};
    number(key, value, min, max);
    target = static_cast<float>(value);
}

void TableReader::integer(const std::string& key, std::uint64_t& target, std::uint64_t min,
                          std::uint64_t max)
{
    if (const toml::node* node = find(key)) {
        target = integerOf(key, *node, min, max);
    }
}

void TableReader::integer(const std::string& key, unsigned& target, std::uint64_t min,
                          std::uint64_t max)
{
    std::uint64_t value = target;
    integer(key, value, min, max);
    target = static_cast<unsigned>(value);
}

void TableReader::range(const std::string& key, float& low, float& high, double min, double max)
{
    const toml::node* node = find(key);
    if (node == nullptr) {
        return;
    }
    const toml::array& ends = arrayOf(key, *node, 2);
    low = static_cast<float>(numberOf(key, ends[0], min, max));
    high = static_cast<float>(numberOf(key, ends[1], min, max));
    if (low > high) {
        fail(key, plain(double{low}) + " is above " + plain(double{high}));
    }
}

void TableReader::range(const std::string& key, unsigned& low, unsigned& high, std::uint64_t max)
{
    pair(key, low, high, max);
    if (low > high) {
        fail(key, std::to_string(low) + " is above " + std::to_string(high));
    }
}

void TableReader::pair(const std::string& key, unsigned& first, unsigned& second, std::uint64_t max)
{
    const toml::node* node = find(key);
    if (node == nullptr) {
        return;
    }
    const toml::array& both = arrayOf(key, *node, 2);
    first = static_cast<unsigned>(integerOf(key, both[0], 0, max));
    second = static_cast<unsigned>(integerOf(key, both[1], 0, max));
}

std::optional<TableReader> TableReader::table(const std::string& key)
{
    const toml::node* node = find(key);
    if (node == nullptr) {
        return std::nullopt;
    }
    const toml::table* found = node->as_table();
    if (found == nullptr) {
        fail(key, "must be a table");
    }
    return TableReader(*found, nested(key), file_);
}

std::vector<TableReader> TableReader::tables(const std::string& key)
{
    std::vector<TableReader> all;
    const toml::node* node = find(key);
    if (node == nullptr) {
        return all;
    }
    for (const toml::node& element : arrayOf(key, *node, 0)) {
        const toml::table* found = element.as_table();
        if (found == nullptr) {
            fail(key, "must be a list of tables, each headed by [[" + nested(key) + "]]");
        }
        all.emplace_back(*found, nested(key), file_);
    }
    return all;
}

std::vector<std::string> TableReader::allKeys()
{
    std::vector<std::string> keys;
    for (const auto& [name, node] : *table_) {
        keys.emplace_back(name.str());
    }
    return keys;
}

} // namespace fcsim
