#include "cli/shared/interrupts.h"

#include <atomic>
#include <csignal>

namespace velk::cli {
namespace {

std::atomic<bool> came{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void handle(void (*handler)(int)) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    // What was ignored from the start stays so: `nohup` and background jobs of simple shells rely on it.
    if (std::signal(number, handler) == SIG_IGN) std::signal(number, SIG_IGN);
  }
}

}  // namespace

void watchInterrupts() {
  handle([](int) { came = true; });
}

void unwatchInterrupts() {
  handle(SIG_DFL);
}

bool isInterrupted() {
  return came;
}

}  // namespace velk::cli
