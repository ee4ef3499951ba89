#include "cli/shared/ask_password.h"

#include <termios.h>
#include <unistd.h>

#include <iostream>
#include <optional>

#include "cli/shared/failure.h"

namespace velk::cli {
namespace {

constexpr char ctrlC = 3;

/// As long as it lives the terminal does not show what is typed. Ctrl-C ends the line instead of the program,
/// which would leave the terminal like that.
class HiddenInput {
 public:
  HiddenInput() {
    tcgetattr(STDIN_FILENO, &before_);
    termios hidden = before_;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
    hidden.c_cc[VEOL] = ctrlC;
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
  }
  ~HiddenInput() { tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_); }
  HiddenInput(const HiddenInput&) = delete;
  HiddenInput& operator=(const HiddenInput&) = delete;

 private:
  termios before_{};
};

/// None when Ctrl-C was typed.
std::optional<std::string> typedLine() {
  std::string line;
  for (char c = 0; ::read(STDIN_FILENO, &c, 1) == 1 && c != '\n'; line += c) {
    if (c == ctrlC) return std::nullopt;
  }
  return line;
}

}  // namespace

std::string askPassword(const std::string& question) {
  const HiddenInput hidden;  // before the question: what is typed at once is hidden, and not dropped
  std::cerr << question << std::flush;
  const auto line = typedLine();
  std::cerr << '\n';
  if (!line) throw Failure(interrupted, "interrupted");
  return *line;
}

}  // namespace velk::cli
