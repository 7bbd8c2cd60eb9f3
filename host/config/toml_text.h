// Texts in the spelling of TOML, for configurations and messages that kxhost prints.
#ifndef KXHOST_TOML_TEXT_H
#define KXHOST_TOML_TEXT_H

#include <string>
#include <string_view>

namespace kxhost {

/// The text as a TOML string: in quotes, with quotes, backslashes and control characters escaped,
/// so that it stays on one line and reads back as it was.
std::string tomlText(std::string_view text);

/// The text with its control characters escaped as TOML does it, so that it stays on one line
/// whatever somebody has called a key or a file.
std::string printable(std::string_view text);

/// A value for a message: line ends and rows of blanks become one blank, and what is too long for a
/// line is cut ("...").
std::string onOneLine(const std::string& text);

} // namespace kxhost

#endif
