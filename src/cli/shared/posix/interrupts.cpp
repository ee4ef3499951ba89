#include "cli/shared/posix/interrupts.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <csignal>

#include "cli/shared/system_interrupts.h"

namespace velk::cli::system {
namespace {

void (*noteInterrupt)(Interrupt) = nullptr;
int arrival = -1;  ///< can be read once a signal has come, whichever thread took it

void onSignal(int number) {
  noteInterrupt(number == SIGINT ? Interrupt::breaks : Interrupt::end);
  eventfd_write(arrival, 1);
}

void handle(void (*handler)(int), int flags) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    // What was ignored from the start stays so: `nohup` and background jobs of simple shells rely on it.
    struct sigaction before {};
    sigaction(number, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(number, &action, nullptr);
  }
}

}  // namespace

void handleInterrupts(void (*note)(Interrupt), Waits waits) {
  noteInterrupt = note;
  if (arrival < 0) arrival = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  handle(onSignal, waits == Waits::goOn ? SA_RESTART : 0);
}

void waitForInterrupt(std::chrono::milliseconds longest) {
  pollfd watched{.fd = arrival, .events = POLLIN, .revents = 0};
  poll(&watched, 1, static_cast<int>(longest.count()));
}

int interruptArrival() {
  return arrival;
}

void forgetInterrupts() {
  eventfd_t count = 0;
  eventfd_read(arrival, &count);
}

void leaveInterrupts() {
  handle(SIG_DFL, 0);
}

}  // namespace velk::cli::system
