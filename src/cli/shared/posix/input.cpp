#include "cli/shared/input.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

#include "cli/shared/interrupts.h"
#include "cli/shared/posix/input.h"
#include "cli/shared/posix/interrupts.h"

namespace velk::cli {
namespace {

/// Ctrl-C throws away what a terminal still holds, so that a read may find nothing although `poll` saw something. On a
/// description of its own it does not wait then; others who have standard input open go on waiting in theirs.
int openInput() {
  if (isatty(STDIN_FILENO) == 0) return STDIN_FILENO;
  const int own = ::open("/proc/self/fd/0", O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  return own < 0 ? STDIN_FILENO : own;
}

}  // namespace

std::size_t system::readInput(char* to, std::size_t size) {
  static const int input = openInput();
  while (true) {
    std::array<pollfd, 2> watched{{{.fd = input, .events = POLLIN, .revents = 0},
                                   {.fd = interruptArrival(), .events = POLLIN, .revents = 0}}};
    const int ready = ::poll(watched.data(), watched.size(), -1);
    if (ready < 0 && errno == EINTR) continue;
    if (ready < 0 || watched[1].revents != 0) return 0;
    const ssize_t count = ::read(input, to, size);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR && errno != EAGAIN) return 0;
  }
}

bool readLine(std::string& line) {
  static std::string taken;
  std::size_t end = 0;
  while ((end = taken.find('\n')) == std::string::npos) {
    std::array<char, 4096> text{};
    const std::size_t count = system::readInput(text.data(), text.size());
    if (count == 0) {
      if (taken.empty() || isInterrupted()) return false;
      end = taken.size();  // the last line may lack its end
      break;
    }
    taken.append(text.data(), count);
  }
  line = taken.substr(0, end);
  taken.erase(0, end + 1);
  return true;
}

}  // namespace velk::cli
