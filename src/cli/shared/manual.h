#pragma once

#include <optional>
#include <string>

#include "cli/shared/command_line.h"

namespace velk::cli {

/// The manual page of a program, for man(1), from what its help says. In footers a short line that ends with a
/// colon is a heading, and indented lines stand as they are.
std::string manualOf(const CommandShape& program, const std::string& version);

/// Prints it, and is the exit status, when "manual" is all that stands on the command line.
std::optional<int> printManual(const std::function<CommandShape()>& shape, const std::string& version,
                               int argc, char** argv);

}  // namespace velk::cli
