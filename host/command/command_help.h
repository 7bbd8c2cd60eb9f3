// What the help of kxhost says below the options of each verb, and how wide it is.
#ifndef KXHOST_COMMAND_HELP_H
#define KXHOST_COMMAND_HELP_H

#include "command/command_line.h"

#include <CLI/CLI.hpp>

#include <string>

namespace kxhost {

/// Below the options of kxhost itself: examples, signals, all exit codes.
const char* generalFooter();

/// Below the options of a verb: what only it has, and where the rest is.
const char* footerOf(Verb verb);

/// Lays help out for terminals of 100 columns.
class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter();
    std::string make_option(const CLI::Option* option, bool isPositional) const override;
    std::string make_footer(const CLI::App* app) const override;
};

} // namespace kxhost

#endif
