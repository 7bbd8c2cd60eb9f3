// Pieces of HTML that the sections of the report are made of.
#ifndef KXHOST_REPORT_HTML_H
#define KXHOST_REPORT_HTML_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kxhost {

/// "<name attributes>content</name>"; all of it is markup.
std::string element(std::string_view name, const std::string& content,
                    std::string_view attributes = {});

/// A number that people read in groups and programs as it is: "<data id value>12 345</data>".
std::string dataElement(std::string_view id, std::uint64_t number);

/// A section with its heading; `id` is a place to link to, `heading` and `content` are markup.
std::string section(std::string_view id, std::string_view heading, const std::string& content);

/// A figure with its title, a sentence about it and what it shows, all markup.
std::string figure(std::string_view title, const std::string& words, const std::string& content);

/// A table; the cells are markup. Columns from the second on hold numbers when `numbers` says so.
std::string table(const std::vector<std::string>& head,
                  const std::vector<std::vector<std::string>>& rows, bool numbers);

/// Something that is shown when the reader asks for it.
std::string foldedAway(const std::string& summary, const std::string& content);

} // namespace kxhost

#endif
