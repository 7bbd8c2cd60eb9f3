// What is wrong with a command line, in words, with the word that may have been meant.
#ifndef KXHOST_COMMAND_MISTAKE_H
#define KXHOST_COMMAND_MISTAKE_H

#include <CLI/CLI.hpp>

#include <string>

namespace kxhost {

/// One sentence on what `mistake` stands for, and a line that says where help is. REQUIRES: `app`
/// has just thrown it.
std::string mistakeText(const CLI::App& app, const CLI::ParseError& mistake);

} // namespace kxhost

#endif
