#include "cli/shared/terminal.h"

#include <cstdlib>

#include "values/digits.h"

namespace velk::cli {

int outputWidth() {
  constexpr int usual = 80;
  const char* const said = std::getenv("COLUMNS");
  if (const auto columns = wholeNumber<std::uint16_t>(said == nullptr ? "" : said);
      columns.value_or(0) != 0) {
    return *columns;
  }
  const int columns = terminalWidth();
  return columns == 0 ? usual : columns;
}

bool colours() {
  const char* const off = std::getenv("NO_COLOR");
  return outputIsTerminal() && terminalHasColours() && (off == nullptr || *off == '\0');
}

std::string bold(std::string_view text) {
  return colours() ? "\x1b[1m" + std::string(text) + "\x1b[0m" : std::string(text);
}

}  // namespace velk::cli
