#include "cli/shared/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace velk::cli {

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

}  // namespace velk::cli
