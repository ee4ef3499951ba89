#include "cli/shared/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>

namespace velk::cli {
namespace {

std::string variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

bool outputIsTerminal() {
  return isatty(STDOUT_FILENO) != 0;
}

bool errorIsTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

bool inputIsTerminal() {
  return isatty(STDIN_FILENO) != 0;
}

int terminalWidth() {
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool terminalHasColours() {
  const std::string term = variable("TERM");
  return !term.empty() && term != "dumb" && term != "unknown" && !term.starts_with("vt") &&
         !term.ends_with("-m") && !term.ends_with("-mono");
}

// The name counts, not whether this machine has the locale: the terminal may be another one's.
bool terminalShowsUtf8() {
  for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    std::string locale = variable(name);
    if (locale.empty()) continue;
    std::erase(locale, '-');
    std::transform(locale.begin(), locale.end(), locale.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return locale.find("utf8") != std::string::npos;
  }
  return false;
}

}  // namespace velk::cli
