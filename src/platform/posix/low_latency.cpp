#include "platform/posix/low_latency.h"

#include <linux/serial.h>
#include <linux/tty_flags.h>
#include <sys/ioctl.h>

#include <utility>

namespace velk::platform {
namespace {

/// Whether the flag was another one before and is as wanted now.
bool changeFlag(int fd, bool on) {
  serial_struct state{};
  if (ioctl(fd, TIOCGSERIAL, &state) != 0) return false;
  const int before = std::exchange(state.flags, on ? state.flags | static_cast<int>(ASYNC_LOW_LATENCY)
                                                   : state.flags & ~static_cast<int>(ASYNC_LOW_LATENCY));
  return state.flags != before && ioctl(fd, TIOCSSERIAL, &state) == 0;
}

}  // namespace

void LowLatency::begin(int fd) {
  fd_ = changeFlag(fd, true) ? fd : Fd::none;
}

void LowLatency::end() {
  if (fd_ != Fd::none) changeFlag(fd_, false);
  fd_ = Fd::none;
}

}  // namespace velk::platform
