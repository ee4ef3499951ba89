#include "cli/shared/terminal.h"

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

}  // namespace velk::cli
