#pragma once

#include <string>
#include <string_view>

namespace velk::cli {

/// Whether a person reads along.
bool outputIsTerminal();
bool errorIsTerminal();
bool inputIsTerminal();

/// How many columns standard output has: what COLUMNS says, else the terminal, else 80.
int outputWidth();

/// Those of the terminal that is standard output; 0 when it is none, or does not know.
int terminalWidth();

/// Whether the terminal has colours, as TERM says on Linux, and shows UTF-8, as the locale says there.
bool terminalHasColours();
bool terminalShowsUtf8();

/// Whether standard output is coloured: on a terminal that has colours, unless NO_COLOR is set.
bool colours();

/// The text in bold, where standard output is coloured.
std::string bold(std::string_view text);

}  // namespace velk::cli
