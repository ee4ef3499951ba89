#include "cli/shared/native_text.h"

#include <cstdlib>

namespace velk::cli {

/// Words are bytes here; that those of texts are UTF-8 is seen to where the texts are read.
std::vector<std::string> commandLine(int argc, char** argv) {
  return {argv, argv + argc};
}

std::optional<std::string> environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

/// Terminals show UTF-8.
unsigned setUtf8Console() {
  return 0;
}

void resetConsole(unsigned /*before*/) {}

}  // namespace velk::cli
