#include "cli/shared/terminal.h"

#include <cstdlib>

namespace velk::cli {

bool colours() {
  const char* const off = std::getenv("NO_COLOR");
  return outputIsTerminal() && (off == nullptr || *off == '\0');
}

std::string bold(std::string_view text) {
  return colours() ? "\x1b[1m" + std::string(text) + "\x1b[0m" : std::string(text);
}

}  // namespace velk::cli
